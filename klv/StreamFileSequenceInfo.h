#ifndef CLIPPARSER_KLV_STREAMFILESEQUENCEINFO_H
#define CLIPPARSER_KLV_STREAMFILESEQUENCEINFO_H

#include "foundation/OxNumber.h"
#include "klv/KLVPacket.h"

// A private packet of the header partition that places the file within a sequence of stream files. Not synchronised.
//
// Value: items of tag (2), length (2) and value, big-endian, in any order:
//   1201   8  start position, signed          3C0A  16  instance UID
//   1501   8  start timecode, signed          4401  32  package UID, a UMID
// Other tags are skipped; a repeated item replaces the one before it.
class CLIPPARSER_EXPORT StreamFileSequenceInfo : public KLVPacket {
 public:
  // Empty until Import; with key and offsets of a packet that was read generically, if one is given.
  StreamFileSequenceInfo();
  explicit StreamFileSequenceInfo(OxSharedPtr<KLVPacket> packet);
  ~StreamFileSequenceInfo() override;

  void init();  // does nothing

  // Empty when the packet does not hold the item. The numbers are signed 64-bit: a count of
  // frames and a position in edit units.
  [[nodiscard]] OxSharedPtr<MxfUUID> InstanceUID() const { return m_instanceUID; }
  [[nodiscard]] OxSharedPtr<UMID> PackageUID() const { return m_packageUID; }
  [[nodiscard]] OxSharedPtr<OxNumber> StartTimecode() const { return m_startTimecode; }
  [[nodiscard]] OxSharedPtr<OxNumber> StartPosition() const { return m_startPosition; }

  bool isImportable() override;
  using KLVPacket::Import;
  // Decodes packet's Length() bytes at `offset`.
  //   kStatusOK          whatever the value holds: a malformed item, or one of a known tag but another length, only
  //                      ends the decoding, and the fields read so far are kept
  //   kStatusUnreadable  no stream given, or the offset cannot be reached
  unsigned int Import(OxSharedPtr<OxStream> stream, long long offset) override;

 private:
  // Reads or skips the value of one item; false ends the decoding.
  bool ReadItem(ParseMetaData& reader, unsigned int tag, unsigned int length);

  OxSharedPtr<MxfUUID> m_instanceUID;
  OxSharedPtr<UMID> m_packageUID;
  OxSharedPtr<OxNumber> m_startTimecode;
  OxSharedPtr<OxNumber> m_startPosition;
};

#endif  // CLIPPARSER_KLV_STREAMFILESEQUENCEINFO_H
