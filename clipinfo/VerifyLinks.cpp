#include <algorithm>
#include <map>
#include <utility>

#include "clipinfo/VerifySteps.h"

namespace {

constexpr unsigned int kStatusByte = 14;  // of a partition pack's key
enum Status : unsigned char { kOpenIncomplete = 1, kClosedIncomplete, kOpenComplete, kClosedComplete };

// The value of a partition pack, and of a random index pack, without their lists; an entry of each list.
constexpr unsigned long long kPackSize = 88;
constexpr unsigned long long kBatchOffset = 80;  // of the essence containers
constexpr unsigned long long kLabelSize = 16;
constexpr unsigned long long kOverallLengthSize = 4;
constexpr unsigned long long kEntrySize = 4 + 8;

unsigned char StatusOf(const PartitionPack& pack) { return pack.key().ValueAtIndex(kStatusByte); }

bool isSame(const OxSharedPtr<MxfUUID>& a, const OxSharedPtr<MxfUUID>& b) { return a && b && *a == *b; }

bool hasSameContainers(const PartitionPack& a, const PartitionPack& b) {
  bool isEqual = a.EssenceCount() == b.EssenceCount();
  for (unsigned int i = 0; isEqual && i < a.EssenceCount(); ++i)
    isEqual = isSame(a.EssenceAtIndex(i), b.EssenceAtIndex(i));
  return isEqual;
}

class LinkCheck {
 public:
  explicit LinkCheck(VerifyFile& file) : m_file(file), m_all(file.partitions), m_first(*file.partitions.front().pack) {}

  void Run() {
    for (std::size_t i = 0; i < m_all.size(); ++i) {
      CheckPack(m_all[i]);
      CheckLikeness(m_all[i]);
      CheckKind(m_all[i], i);
      CheckLinks(m_all[i], i);
      CheckStreams(m_all[i]);
    }
    if (!hasFooter()) m_file.findings.Add(FindingKind::FooterMissing, m_file.Length());
    CheckBodyOffsets();
    CheckRandomIndex();
  }

 private:
  [[nodiscard]] bool hasFooter() const { return m_all.back().pack->PacketType() == kKeyFooterPartitionPack; }

  void Add(FindingKind kind, const VerifiedPartition& partition, std::string detail) {
    m_file.findings.Add(kind, partition.offset, std::move(detail));
  }
  void Compare(FindingKind kind, const VerifiedPartition& partition, const char* name, unsigned long long found,
               unsigned long long expected) {
    if (found != expected) Add(kind, partition, InsteadOf(name, found, expected));
  }

  void CheckPack(const VerifiedPartition& partition) {
    const PartitionPack& pack = *partition.pack;
    unsigned int count = 0;
    unsigned int size = 0;
    const auto batch = static_cast<long long>(pack.ValueOffset() + kBatchOffset);
    const bool isRead = m_file.Reader().SetOffset(batch, kOxStreamSeekFromStart) && m_file.Reader().GetUInt32(&count) &&
                        m_file.Reader().GetUInt32(&size);
    if (!isRead || (count != 0 && size != kLabelSize) || pack.Length() != kPackSize + kLabelSize * count) {
      Add(FindingKind::PartitionPackFields, partition, "its length does not fit its essence container labels");
    }
    Compare(FindingKind::PartitionPlace, partition, "it", pack.ThisPartition(), partition.offset);
    Compare(FindingKind::PartitionKAG, partition, "KAGSize", pack.KAGSize(), partition.base - partition.offset);
    if (pack.MajorVersion() != 1)
      Compare(FindingKind::PartitionDiffers, partition, "MajorVersion", pack.MajorVersion(), 1);
  }

  // What is the same in each partition pack of a clip.
  void CheckLikeness(const VerifiedPartition& partition) {
    const PartitionPack& pack = *partition.pack;
    Compare(FindingKind::PartitionDiffers, partition, "MinorVersion", pack.MinorVersion(), m_first.MinorVersion());
    Compare(FindingKind::PartitionDiffers, partition, "KAGSize", pack.KAGSize(), m_first.KAGSize());
    if (!isSame(pack.OperationalPattern(), m_first.OperationalPattern())) {
      Add(FindingKind::PartitionDiffers, partition, "another operational pattern than the header partition");
    }
    if (!hasSameContainers(pack, m_first)) {
      Add(FindingKind::PartitionDiffers, partition, "other essence containers than the header partition");
    }
  }

  void CheckKind(const VerifiedPartition& partition, std::size_t number) {
    const unsigned int type = partition.pack->PacketType();
    const unsigned char status = StatusOf(*partition.pack);
    const bool isFirst = number == 0;
    const bool isLast = number + 1 == m_all.size();
    if (isFirst != (type == kKeyHeaderPartitionPack)) Add(FindingKind::PartitionStatus, partition, "header partition");
    if (!isLast && type == kKeyFooterPartitionPack) Add(FindingKind::PartitionStatus, partition, "footer partition");
    if (status < kOpenIncomplete || status > kClosedComplete) {
      Add(FindingKind::PartitionStatus, partition, "status " + std::to_string(status));
    } else if (status != kClosedComplete) {
      Add(FindingKind::OpenPartition, partition, {});
    }
  }

  void CheckLinks(const VerifiedPartition& partition, std::size_t number) {
    const PartitionPack& pack = *partition.pack;
    const unsigned long long previous = number == 0 ? 0 : m_all[number - 1].offset;
    Compare(FindingKind::PartitionPrevious, partition, "it", pack.PreviousPartition(), previous);
    // Written before the footer's place was known; ST 377-1 allows that while the partition is open.
    const unsigned char status = StatusOf(pack);
    const bool isOpen = status == kOpenIncomplete || status == kOpenComplete;
    if (pack.FooterPartition() == 0 && (isOpen || !hasFooter())) return;
    Compare(FindingKind::PartitionFooter, partition, "it", pack.FooterPartition(),
            hasFooter() ? m_all.back().offset : 0);
  }

  void CheckStreams(const VerifiedPartition& partition) {
    const PartitionPack& pack = *partition.pack;
    const bool isBody = pack.PacketType() == kKeyBodyPartitionPack;  // which may hold no essence yet
    if (partition.hasEssence() ? pack.BodySID() == 0 : pack.BodySID() != 0 && !isBody) {
      Add(FindingKind::PartitionStreams, partition,
          "BodySID " + std::to_string(pack.BodySID()) +
              (partition.hasEssence() ? " with essence" : " without essence"));
    }
    const bool hasIndex = !partition.segments.empty();
    if (hasIndex != (pack.IndexSID() != 0)) {
      Add(FindingKind::PartitionStreams, partition,
          "IndexSID " + std::to_string(pack.IndexSID()) + (hasIndex ? " with an index" : " without an index"));
    }
  }

  void CheckBodyOffsets() {
    std::map<unsigned int, unsigned long long> sizes;  // of the essence so far, by body SID
    for (const VerifiedPartition& partition : m_all) {
      const unsigned int sid = partition.pack->BodySID();
      const unsigned long long before = sid == 0 ? 0 : sizes[sid];
      Compare(FindingKind::PartitionBodyOffset, partition, "it", partition.pack->BodyOffset(), before);
      if (sid != 0) sizes[sid] += partition.end - partition.content;
    }
  }

  void CheckRandomIndex() {
    if (!m_file.randomIndex) {
      m_file.findings.Add(FindingKind::NoRandomIndex, m_file.Length());
      return;
    }
    RandomIndexPack& pack = *m_file.randomIndex;
    if (pack.Length() != kEntrySize * pack.Count() + kOverallLengthSize) {
      m_file.findings.Add(FindingKind::RandomIndexEntry, pack.Offset(), "its length is not that of whole entries");
    }
    std::vector<bool> isListed(m_all.size());
    unsigned long long last = 0;
    for (unsigned int i = 0; i < pack.Count(); ++i) CheckEntry(pack, i, last, isListed);
    for (std::size_t i = 0; i < m_all.size(); ++i) {
      if (!isListed[i]) Add(FindingKind::RandomIndexMissing, m_all[i], {});
    }
  }

  void CheckEntry(const RandomIndexPack& pack, unsigned int number, unsigned long long& last,
                  std::vector<bool>& isListed) {
    unsigned int sid = 0;
    unsigned long long offset = 0;
    if (!pack.GetBodySIDAtIndex(number, sid) || !pack.GetOffsetAtIndex(number, offset)) return;
    const unsigned long long place = pack.ValueOffset() + kEntrySize * number;
    const std::string entry = "entry " + std::to_string(number) + ": ";
    if (offset < last) m_file.findings.Add(FindingKind::RandomIndexOrder, place, entry + OffsetText(offset));
    last = offset;
    const auto found = std::lower_bound(
        m_all.begin(), m_all.end(), offset,
        [](const VerifiedPartition& partition, unsigned long long value) { return partition.offset < value; });
    if (found == m_all.end() || found->offset != offset) {
      m_file.findings.Add(FindingKind::RandomIndexEntry, place, entry + "no partition at " + OffsetText(offset));
      return;
    }
    isListed[static_cast<std::size_t>(found - m_all.begin())] = true;
    if (sid != found->pack->BodySID()) {
      m_file.findings.Add(FindingKind::RandomIndexEntry, place,
                          entry + InsteadOf("BodySID", sid, found->pack->BodySID()));
    }
  }

  VerifyFile& m_file;
  const std::vector<VerifiedPartition>& m_all;
  const PartitionPack& m_first;
};

}  // namespace

void CheckPartitions(VerifyFile& file) { LinkCheck(file).Run(); }
