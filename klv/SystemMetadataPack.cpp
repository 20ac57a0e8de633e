#include "klv/SystemMetadataPack.h"

#include <algorithm>

#include "foundation/FieldBytes.h"

namespace {

constexpr unsigned int kValueSize = 1 + 1 + 1 + 2 + 2 + 16 + 2 * (1 + SystemMetadataPack::kDateSize);

}  // namespace

SystemMetadataPack::SystemMetadataPack() = default;

SystemMetadataPack::SystemMetadataPack(OxSharedPtr<KLVPacket> packet) : KLVPacket(packet) {}

SystemMetadataPack::~SystemMetadataPack() = default;

void SystemMetadataPack::init() {
  m_systemItemBitmap = 0;
  m_contentPackageRate = 0;
  m_contentPackageType = 0;
  m_channelHandle = 0;
  m_continuityCount = 0;
  m_creationDateType = 0;
  m_creationDate = {};
  m_userDateType = 0;
  m_userDate = {};
}

bool SystemMetadataPack::CreationDate(unsigned char* date) const {
  if (date != nullptr) std::copy(m_creationDate.begin(), m_creationDate.end(), date);
  return date != nullptr;
}

bool SystemMetadataPack::UserDate(unsigned char* date) const {
  if (date != nullptr) std::copy(m_userDate.begin(), m_userDate.end(), date);
  return date != nullptr;
}

bool SystemMetadataPack::isImportable() { return PacketType() == kKeySystemMetadataPack; }

unsigned int SystemMetadataPack::Import(OxSharedPtr<OxStream> stream, long long offset) {
  if (!stream) return kStatusNoInput;
  ParseMetaData reader(stream);
  const bool isRead = reader.SetOffset(offset, kOxStreamSeekFromStart) &&
                      DecodeFixed<kValueSize>(reader, [this](auto& fields) { return ReadFields(fields); });
  return isRead ? kStatusOK : kStatusUnreadable;
}

template <class Reader>
bool SystemMetadataPack::ReadFields(Reader& reader) {
  return ReadHead(reader) && ReadDate(reader, m_creationDateType, m_creationDate) &&
         ReadDate(reader, m_userDateType, m_userDate);
}

template <class Reader>
bool SystemMetadataPack::ReadHead(Reader& reader) {
  if (!reader.GetUInt8(&m_systemItemBitmap) || !reader.GetUInt8(&m_contentPackageRate) ||
      !reader.GetUInt8(&m_contentPackageType) || !reader.GetUInt16(&m_channelHandle) ||
      !reader.GetUInt16(&m_continuityCount)) {
    return false;
  }
  m_universalLabel = reader.GetUUID();
  return static_cast<bool>(m_universalLabel);
}

template <class Reader>
bool SystemMetadataPack::ReadDate(Reader& reader, unsigned int& type, Date& date) {
  unsigned char stored = 0;
  const bool isTypeRead = reader.GetUInt8(&stored);
  type = stored == 0x81 || stored == 0x82 ? stored : 0;
  Date bytes{};
  if (!isTypeRead || !reader.GetBytes(bytes.data(), kDateSize)) return false;
  date = bytes;
  return true;
}
