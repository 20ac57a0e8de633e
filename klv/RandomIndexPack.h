#ifndef CLIPPARSER_KLV_RANDOMINDEXPACK_H
#define CLIPPARSER_KLV_RANDOMINDEXPACK_H

#include <vector>

#include "klv/KLVPacket.h"

// One partition in the random index pack.
struct _RandomIndex {
  unsigned int bodySID;           // 0: the partition has no essence
  unsigned long long byteOffset;  // of the partition pack, from the start of the file
};

// The random index pack at the end of a file (SMPTE ST 377-1): the body SID and the offset of every partition, in file
// order. Not synchronised.
//
// Value, big-endian:
//   12i       4  body SID of partition i
//   12i + 4   8  byte offset of partition i
//   the last  4  overall length of the pack, key and length field included; not compared with anything here
class CLIPPARSER_EXPORT RandomIndexPack : public KLVPacket {
 public:
  // Empty until Import; with key and offsets of a packet that was read generically, if one is given.
  RandomIndexPack();
  explicit RandomIndexPack(OxSharedPtr<KLVPacket> packet);
  ~RandomIndexPack() override;

  // Partitions in the pack.
  [[nodiscard]] unsigned int Count() const { return static_cast<unsigned int>(m_entries.size()); }
  // False, with the output untouched, when `index` is not below the count.
  [[nodiscard]] bool GetBodySIDAtIndex(unsigned int index, unsigned int& sid) const;
  [[nodiscard]] bool GetOffsetAtIndex(unsigned int index, unsigned long long& offset) const;

  bool isImportable() override;
  using KLVPacket::Import;
  // Replaces the entries by those in the packet's Length() bytes at `offset`; a rest of fewer than 12 bytes is ignored.
  //   kStatusOK          all entries read
  //   kStatusUnreadable  no stream given, the value is longer than the stream, or an entry could not be read; no
  //                      entries
  unsigned int Import(OxSharedPtr<OxStream> stream, long long offset) override;

 private:
  bool ReadEntries(ParseMetaData& reader);

  std::vector<_RandomIndex> m_entries;
};

#endif  // CLIPPARSER_KLV_RANDOMINDEXPACK_H
