#ifndef CLIPPARSER_KLV_PRIMERPACK_H
#define CLIPPARSER_KLV_PRIMERPACK_H

#include <map>

#include "klv/KLVPacket.h"

// The primer pack (SMPTE ST 377-1): which label each 16-bit local tag of the header metadata stands for.
// Not synchronised; only read after the import.
//
// Value, big-endian:
//         0   4  number of items
//         4   4  item length, 18
//   8 + 18i   2  local tag of item i
//  10 + 18i  16  label of item i
class CLIPPARSER_EXPORT PrimerPack : public KLVPacket {
 public:
  // Empty until Import; with key and offsets of a packet that was read generically, if one is given.
  PrimerPack();
  explicit PrimerPack(OxSharedPtr<KLVPacket> packet);
  ~PrimerPack() override;

  // The local tag of a label. False, with `*tag` 0, when the primer does not hold it; false and nothing written when
  // either pointer is null.
  [[nodiscard]] bool UIDToTag(unsigned short* tag, const MxfUUID* label) const;
  // A copy of the first label, in label order, that has this tag; empty when none has.
  [[nodiscard]] OxSharedPtr<MxfUUID> UIDAtTag(unsigned short tag) const;

  bool isImportable() override;
  using KLVPacket::Import;
  // Replaces what was there. When a label occurs twice its first tag is kept.
  //   kStatusOK          the items are in the map; or the pack is unreadable before its first item, its count is 0 or
  //                      its item length not 18: the map is then empty and the parse of the header goes on
  //   kStatusNoInput     no stream given; the map is empty
  //   kStatusUnreadable  the stream ends before the items do, or more than 65,536 items overrun the packet; the map
  //                      is empty
  unsigned int Import(OxSharedPtr<OxStream> stream, long long offset) override;

  // One line for each entry in label order, between braces: label = tag.
  OxSharedPtr<OxStringMac> Description() override;

 private:
  bool ReadItems(ParseMetaData& reader, unsigned int count);
  [[nodiscard]] bool isOverrun(const ParseMetaData& reader, unsigned int count) const;

  std::map<MxfUUID, unsigned short> m_tags;
};

#endif  // CLIPPARSER_KLV_PRIMERPACK_H
