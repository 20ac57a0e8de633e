#ifndef CLIPPARSER_CLIPINFO_VERIFYFILE_H
#define CLIPPARSER_CLIPINFO_VERIFYFILE_H

#include <vector>

#include "clipinfo/VerifyFindings.h"
#include "foundation/ParseMetaData.h"
#include "klv/PartitionPack.h"
#include "klv/RandomIndexPack.h"

// Where a packet lies that is looked at later.
struct PacketPlace {
  unsigned int type;
  unsigned long long offset;
  unsigned long long valueOffset;
  unsigned long long length;
};

// A partition as its bytes say, whatever its pack says of itself.
struct VerifiedPartition {
  unsigned long long offset = 0;
  unsigned long long end = 0;  // the next partition, the random index pack or the end of the file
  OxSharedPtr<PartitionPack> pack;
  unsigned long long base = 0;     // behind the pack and its fill
  unsigned long long content = 0;  // of the first essence; `end` when there is none
  std::vector<PacketPlace> primers;
  std::vector<PacketPlace> sets;
  std::vector<PacketPlace> segments;

  [[nodiscard]] bool hasEssence() const { return content < end; }
};

// What a packet is to the layout of a file.
enum class PacketRole { Fill, Partition, RandomIndex, Header, Index, Essence, Unknown };
[[nodiscard]] PacketRole RoleOf(const KLVPacket& packet);
[[nodiscard]] std::string KeyText(const KLVPacket& packet);  // "key 06.0E.2B.34..."

// The file that is verified, as far as it is known by now: the steps of VerifySteps.h fill it one after the other.
class VerifyFile {
 public:
  VerifyFile(OxSharedPtr<OxStream> stream, VerifyFindings& found);

  [[nodiscard]] unsigned long long Length() const { return m_stream->Length(); }
  [[nodiscard]] const OxSharedPtr<OxStream>& Stream() const { return m_stream; }
  [[nodiscard]] ParseMetaData& Reader() { return m_reader; }

  // The packet at an offset that ends before `end`, if there is one.
  [[nodiscard]] bool PeekPacket(unsigned long long offset, unsigned long long end, KLVPacket& packet);
  // As PeekPacket; otherwise that is a finding.
  [[nodiscard]] bool ReadPacket(unsigned long long offset, unsigned long long end, KLVPacket& packet,
                                std::optional<unsigned long long> editUnit = {});
  // Tells a fill item behind which the next packet is not on the KAG, counted from the partition's beginning.
  void CheckFill(const KLVPacket& packet, const VerifiedPartition& partition);

  VerifyFindings& findings;
  OxSharedPtr<RandomIndexPack> randomIndex;   // empty when there is none
  std::vector<VerifiedPartition> partitions;  // in file order

 private:
  [[nodiscard]] bool isPlausible(unsigned long long offset, unsigned long long end);

  OxSharedPtr<OxStream> m_stream;
  ParseMetaData m_reader;
};

#endif  // CLIPPARSER_CLIPINFO_VERIFYFILE_H
