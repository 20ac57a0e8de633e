#ifndef CLIPPARSER_FOUNDATION_FIELDBYTES_H
#define CLIPPARSER_FOUNDATION_FIELDBYTES_H

#include <algorithm>

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

// Reads of several fields at once end where a block of the file stream ends. The next block might not be needed, and a
// disk that fails in it must not cost the fields before it.
inline unsigned long long RestOfBlock(const ParseMetaData& reader) {
  constexpr unsigned long long kBlockSize = 65536;
  return std::min(reader.RestLength(), kBlockSize - static_cast<unsigned long long>(reader.offset()) % kBlockSize);
}

// Shows `decode` the next kSize bytes, taken in one read, if they lie in one block; otherwise the reader itself, so
// that what lies before a cut is still decoded. `decode` must read all of them, and no more.
template <unsigned int kSize, class Decode>
bool DecodeFixed(ParseMetaData& reader, Decode decode) {
  if (RestOfBlock(reader) < kSize) return decode(reader);
  unsigned char bytes[kSize];
  if (!reader.GetBytes(bytes, kSize)) return false;  // nor could the first field be read
  FieldBytes fields(bytes);
  return decode(fields);
}

#endif  // CLIPPARSER_FOUNDATION_FIELDBYTES_H
