#ifndef CLIPPARSER_KLV_KLVPACKET_H
#define CLIPPARSER_KLV_KLVPACKET_H

#include "foundation/Export.h"
#include "foundation/OxObject.h"
#include "foundation/OxSharedPtr.h"
#include "foundation/OxStream.h"
#include "foundation/ParseMetaData.h"
#include "foundation/Status.h"
#include "foundation/ULKey.h"

// One packet of an MXF file (SMPTE ST 336): where it lies in its stream and what its key is.
//
//    offset        16  key
//    offset + 16    n  BER length (n is 1 to 5)
//    value offset   l  value, `length` bytes
//
// Offsets are bytes from the start of the stream. After a successful read of key and length the value lies wholly in
// the stream. A derived class decodes the value of its kind: isImportable tells from the key whether it can, Import
// does it. Packets are read with ParseMetaData::ParsePacket or in steps with ParseKeyAndLength and ParsePacketValue.
// Not synchronised.
class CLIPPARSER_EXPORT KLVPacket : public virtual OxObject {
 public:
  KLVPacket();
  // Takes over key, offset, length and value offset of a packet that was read generically; empty gives zeros.
  explicit KLVPacket(OxSharedPtr<KLVPacket> other);
  ~KLVPacket() override;

  // A copy of the key.
  [[nodiscard]] ULKey key() const { return m_key; }
  // Copies 16 bytes; null is ignored.
  void SetKey(const MxfUUID* key);

  // Where the key is, how many bytes the value has, where it is; 0 before anything is read.
  [[nodiscard]] unsigned long long Offset() const { return m_offset; }
  [[nodiscard]] unsigned long long Length() const { return m_length; }
  [[nodiscard]] unsigned long long ValueOffset() const { return m_valueOffset; }
  void SetOffset(unsigned long long offset) { m_offset = offset; }
  void SetLength(unsigned long long length) { m_length = length; }
  void SetValueOffset(unsigned long long offset) { m_valueOffset = offset; }

  // Where the next packet's key starts. Fill is a packet of its own and not skipped.
  [[nodiscard]] unsigned long long NextOffset() const { return m_valueOffset + m_length; }
  // The key's classification, see KeyType.
  [[nodiscard]] unsigned int PacketType() const { return m_key.GetKeyType(); }

  // Whether this class decodes packets of this key; false in the base.
  virtual bool isImportable();
  // Decodes the value at ValueOffset().
  virtual unsigned int Import(OxSharedPtr<OxStream> stream);
  // Decodes the value that starts at `offset`. The stream is read, not kept. The base reads nothing and returns
  // kStatusOK.
  virtual unsigned int Import(OxSharedPtr<OxStream> stream, long long offset);

 protected:
  // Whether offsets and length are those of a packet in a stream, rather than never set.
  [[nodiscard]] bool isPlaced() const { return m_valueOffset >= kSmallestHead; }

 private:
  static constexpr unsigned long long kSmallestHead = 16 + 1;

  ULKey m_key;
  unsigned long long m_offset = 0;
  unsigned long long m_length = 0;
  unsigned long long m_valueOffset = 0;
};

#endif  // CLIPPARSER_KLV_KLVPACKET_H
