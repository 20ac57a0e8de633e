#ifndef CLIPPARSER_FOUNDATION_FIELDBYTES_H
#define CLIPPARSER_FOUNDATION_FIELDBYTES_H

#include "foundation/BigEndian.h"
#include "foundation/CopyBytes.h"
#include "foundation/ParseMetaData.h"

// The fixed-width reads of ParseMetaData over bytes that are there: they always succeed. The caller must not read more
// than that.
class FieldBytes {
 public:
  explicit FieldBytes(const unsigned char* bytes) : m_next(bytes) {}

  bool GetUInt8(unsigned char* value) { return Get(value); }
  bool GetUInt16(unsigned short* value) { return Get(value); }
  bool GetUInt32(unsigned int* value) { return Get(value); }
  bool GetUInt64(unsigned long long* value) { return Get(value); }
  bool GetBytes(unsigned char* buffer, unsigned int count) {
    CopyBytes(buffer, Take(count), count);
    return true;
  }
  bool GetUUID(MxfUUID* value) {
    value->SetKey(Take(MxfUUID::kSize));
    return true;
  }
  OxSharedPtr<MxfUUID> GetUUID() { return OxSharedPtr<MxfUUID>(new MxfUUID(Take(MxfUUID::kSize))); }

 private:
  template <class Unsigned>
  bool Get(Unsigned* value) {
    *value = LoadBigEndian<Unsigned>(Take(sizeof(Unsigned)));
    return true;
  }
  const unsigned char* Take(unsigned int count) {
    const unsigned char* bytes = m_next;
    m_next += count;
    return bytes;
  }

  const unsigned char* m_next;
};

// Shows `decode` the next kSize bytes, taken in one read; where they cannot be taken, the reader itself, so that what
// lies before a cut is still decoded. `decode` must read all of them, and no more.
template <unsigned int kSize, class Decode>
bool DecodeFixed(ParseMetaData& reader, Decode decode) {
  unsigned char bytes[kSize];
  if (!reader.GetBytes(bytes, kSize)) return decode(reader);
  FieldBytes fields(bytes);
  return decode(fields);
}

#endif  // CLIPPARSER_FOUNDATION_FIELDBYTES_H
