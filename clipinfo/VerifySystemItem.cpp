#include "clipinfo/VerifySystemItem.h"

#include <algorithm>

#include "klv/LocalSets.h"

namespace {

constexpr unsigned long long kSystemPackSize = 57;
constexpr std::size_t kProbedPackets = 400;  // among which the first content packages are found

// The keys of the packets, without fill, with which the essence of a partition begins.
std::vector<ULKey> FirstKeys(VerifyFile& file, const VerifiedPartition& partition, unsigned long long from) {
  std::vector<ULKey> keys;
  KLVPacket packet;
  unsigned long long position = from;
  while (keys.size() < kProbedPackets && position < partition.end && file.PeekPacket(position, partition.end, packet)) {
    const PacketRole role = RoleOf(packet);
    if (role == PacketRole::Essence || role == PacketRole::Unknown) keys.push_back(packet.key());
    position = packet.NextOffset();
  }
  return keys;
}

// The key with which a content package begins: the system item's or, without one, the first that comes again.
ULKey FirstKeyOf(const std::vector<ULKey>& keys) {
  const auto isSystem = [](const ULKey& key) { return key.GetKeyType() == kKeySystemMetadataPack; };
  const auto system = std::find_if(keys.begin(), keys.end(), isSystem);
  if (system != keys.end()) return *system;
  for (auto key = keys.begin(); key != keys.end(); ++key) {
    if (std::find(key + 1, keys.end(), *key) != keys.end()) return *key;
  }
  return keys.empty() ? ULKey() : keys.front();
}

}  // namespace

std::vector<MxfUUID> ProbeShape(VerifyFile& file, const VerifiedPartition& partition, unsigned long long from) {
  const std::vector<ULKey> keys = FirstKeys(file, partition, from);
  const ULKey first = FirstKeyOf(keys);
  std::vector<std::vector<MxfUUID>> shapes(1);
  for (const ULKey& key : keys) {
    if (key == first && !shapes.back().empty()) shapes.emplace_back();
    shapes.back().push_back(key);
  }
  if (shapes.size() > 1) shapes.pop_back();  // which may go on behind the packets that were looked at
  const auto votes = [&shapes](const auto& shape) { return std::count(shapes.begin(), shapes.end(), shape); };
  return *std::max_element(shapes.begin(), shapes.end(),
                           [&votes](const auto& a, const auto& b) { return votes(a) < votes(b); });
}

std::vector<unsigned char> KeyBytes(const MxfUUID& key) {
  std::vector<unsigned char> bytes;
  for (unsigned int i = 0; i < MxfUUID::kSize; ++i) bytes.push_back(key.ValueAtIndex(i));
  return bytes;
}

unsigned int TrackNumber(const MxfUUID& key) {
  unsigned int number = 0;
  for (unsigned int i = MxfUUID::kSize - 4; i < MxfUUID::kSize; ++i) number = number << 8 | key.ValueAtIndex(i);
  return number;
}

void SystemItemCheck::Check(const ContentPackage& package) {
  const PackageElement& element = package.elements.front();
  const OxSharedPtr<SystemMetadataPack> pack(new SystemMetadataPack);
  const bool isRead = element.length == kSystemPackSize &&
                      m_file.Reader().SetOffset(static_cast<long long>(element.offset), kOxStreamSeekFromStart) &&
                      m_file.Reader().ParsePacket(pack.get());
  if (!isRead) {
    m_file.findings.Add(FindingKind::SystemItem, element.offset,
                        InsteadOf("its length", element.length, kSystemPackSize), package.editUnit);
    return;
  }
  const bool isFirst = !m_first;
  if (isFirst) {
    m_first = pack;
    m_expected = pack->ContinuityCount();
  }
  CheckLikeness(package, *pack);
  CheckContinuity(package, pack->ContinuityCount());
  CheckMetadataSet(package);
}

void SystemItemCheck::CheckLikeness(const ContentPackage& package, SystemMetadataPack& pack) {
  const bool isLike =
      pack.SystemItemBitmap() == m_first->SystemItemBitmap() &&
      pack.ContentPackageRate() == m_first->ContentPackageRate() &&
      pack.ContentPackageType() == m_first->ContentPackageType() && pack.ChannelHandle() == m_first->ChannelHandle() &&
      pack.CreationDateType() == m_first->CreationDateType() && pack.UserDataType() == m_first->UserDataType() &&
      *pack.UnibersalLabel() == *m_first->UnibersalLabel();
  if (isLike) return;
  m_file.findings.Add(FindingKind::SystemItem, pack.Offset(), "another rate, type, channel, label or kind of date",
                      package.editUnit);
}

// A count that goes on from the one before is not told again: the jump was.
void SystemItemCheck::CheckContinuity(const ContentPackage& package, unsigned short count) {
  if (count != m_expected && count != static_cast<unsigned short>(m_last + 1)) {
    m_file.findings.Add(FindingKind::Continuity, package.elements.front().offset, InsteadOf("it", count, m_expected),
                        package.editUnit);
  }
  const bool isJump = count == static_cast<unsigned short>(m_last + 1);
  m_expected = static_cast<unsigned short>((isJump ? count : m_expected) + 1);
  m_last = count;
}

void SystemItemCheck::CheckMetadataSet(const ContentPackage& package) {
  if (package.elements.size() < 2 || package.elements[1].type != kKeySystemItemLocalSet) return;
  const PackageElement& element = package.elements[1];
  if (element.length == 0) return;  // writers without metadata of their own leave it empty
  const OxSharedPtr<KLVPacket> packet(new KLVPacket);
  if (!m_file.PeekPacket(element.offset, m_file.Length(), *packet)) return;
  const OxSharedPtr<LocalSets> set(new LocalSets(packet));
  if (set->Import(m_file.Stream()) == kStatusOK) return;
  m_file.findings.Add(FindingKind::SystemItem, element.offset, "its package metadata set is malformed",
                      package.editUnit);
}
