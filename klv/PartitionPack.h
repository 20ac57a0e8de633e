#ifndef CLIPPARSER_KLV_PARTITIONPACK_H
#define CLIPPARSER_KLV_PARTITIONPACK_H

#include "foundation/OxArray.h"
#include "klv/KLVPacket.h"

// The pack that opens every partition (SMPTE ST 377-1): where the partition lies, how many bytes of header metadata
// and index follow it, and which streams it carries. Offsets are bytes from the start of the file; files with a run-in
// are not supported. Not synchronised: one thread at a time, or under the host's lock.
//
// Value, big-endian:
//    0   2  major version             48   4  index SID
//    2   2  minor version             52   8  body offset, in the essence stream
//    4   4  KAG size                  60   4  body SID
//    8   8  this partition            64  16  operational pattern label
//   16   8  previous partition        80   8  essence containers: item count (4), item size (4)
//   24   8  footer partition          88  16  each essence container label
//   32   8  header byte count
//   40   8  index byte count
class CLIPPARSER_EXPORT PartitionPack : public KLVPacket {
 public:
  // The answer of HeaderOffset and IndexOffset when the partition has no such part.
  static constexpr unsigned long long kNoOffset = ~0ULL;

  // Empty until Import; with key and offsets of a packet that was read generically, if one is given.
  PartitionPack();
  explicit PartitionPack(OxSharedPtr<KLVPacket> packet);
  ~PartitionPack() override;

  // The fields as stored; 0 before an import.
  [[nodiscard]] unsigned short MajorVersion() const { return m_majorVersion; }
  [[nodiscard]] unsigned short MinorVersion() const { return m_minorVersion; }
  [[nodiscard]] unsigned int KAGSize() const { return m_kagSize; }
  [[nodiscard]] unsigned long long ThisPartition() const { return m_thisPartition; }
  [[nodiscard]] unsigned long long PreviousPartition() const { return m_previousPartition; }
  [[nodiscard]] unsigned long long FooterPartition() const { return m_footerPartition; }
  [[nodiscard]] unsigned long long HeaderByteCount() const { return m_headerByteCount; }
  [[nodiscard]] unsigned long long IndexByteCount() const { return m_indexByteCount; }
  [[nodiscard]] unsigned int IndexSID() const { return m_indexSID; }
  [[nodiscard]] unsigned long long BodyOffset() const { return m_bodyOffset; }
  [[nodiscard]] unsigned int BodySID() const { return m_bodySID; }
  // Empty before an import, and after one that was cut before it.
  [[nodiscard]] OxSharedPtr<MxfUUID> OperationalPattern() const { return m_operationalPattern; }
  // Essence container labels in the pack.
  [[nodiscard]] unsigned int EssenceCount() const;
  // Empty when `index` is not below the count.
  [[nodiscard]] OxSharedPtr<MxfUUID> EssenceAtIndex(unsigned int index) const;

  // Where the parts of the partition begin. The pack and its fill are taken to fill exactly one KAG, whatever its
  // size; that is how the cameras write.
  [[nodiscard]] unsigned long long HeaderOffset() const;   // kNoOffset when the header byte count is 0
  [[nodiscard]] unsigned long long IndexOffset() const;    // kNoOffset when the index byte count is 0
  [[nodiscard]] unsigned long long ContentOffset() const;  // the essence

  // Header, body or footer partition pack, whether open or closed, incomplete or complete.
  bool isImportable() override;
  using KLVPacket::Import;
  //   kStatusOK          all fields hold the file's values; an essence container batch whose item size is not 16
  //                      counts as empty
  //   kStatusNoInput     no stream given; nothing changed
  //   kStatusUnreadable  the stream ends before the value does; fields read before that keep their new values, the
  //                      field that was cut is 0 or empty
  // Reads on past the value's end when the file has more bytes there, as long as the batch has at most 65,536 items.
  unsigned int Import(OxSharedPtr<OxStream> stream, long long offset) override;

 private:
  template <class Reader>
  bool ReadFixedPart(Reader& reader);
  template <class Reader>
  bool ReadNumbers(Reader& reader);
  bool ReadLabels(ParseMetaData& reader);
  [[nodiscard]] unsigned long long MostLabels() const;

  unsigned short m_majorVersion = 0;
  unsigned short m_minorVersion = 0;
  unsigned int m_kagSize = 0;
  unsigned long long m_thisPartition = 0;
  unsigned long long m_previousPartition = 0;
  unsigned long long m_footerPartition = 0;
  unsigned long long m_headerByteCount = 0;
  unsigned long long m_indexByteCount = 0;
  unsigned int m_indexSID = 0;
  unsigned long long m_bodyOffset = 0;
  unsigned int m_bodySID = 0;
  OxSharedPtr<MxfUUID> m_operationalPattern;
  OxSharedPtr<OxArray> m_essenceContainers;
};

#endif  // CLIPPARSER_KLV_PARTITIONPACK_H
