#ifndef CLIPPARSER_FOUNDATION_MXFUUID_H
#define CLIPPARSER_FOUNDATION_MXFUUID_H

#include <array>
#include <functional>

#include "foundation/Export.h"
#include "foundation/OxObject.h"
#include "foundation/OxSharedPtr.h"
#include "foundation/OxStringMac.h"

// 16 bytes in file order: the key of a packet, a label (SMPTE ST 298, ST 336) or the instance identifier by which one
// metadata set refers to another (SMPTE ST 377-1). Ordered bytewise as unsigned numbers. Not synchronised.
class CLIPPARSER_EXPORT MxfUUID : public OxObject {
 public:
  // Bytes of a key or label.
  static constexpr unsigned int kSize = 16;

  MxfUUID();  // 16 zero bytes
  // Copies 16 bytes; null gives zeros.
  MxfUUID(const unsigned char* bytes);
  // Four words, each stored most significant byte first.
  MxfUUID(unsigned int word0, unsigned int word1, unsigned int word2, unsigned int word3);
  MxfUUID(const MxfUUID&) = default;
  MxfUUID& operator=(const MxfUUID&) = default;
  using OxObject::operator=;
  ~MxfUUID() override;

  // Copies 16 bytes; null leaves the key as it is.
  void SetKey(const unsigned char* bytes);
  void SetKey(const MxfUUID* other);

  // Throws "Index range error" (const char*) when `index` is above 15.
  [[nodiscard]] unsigned char ValueAtIndex(unsigned int index) const;

  // 06.0E.2B.34.… in upper case.
  OxSharedPtr<OxStringMac> Description() override;

  // All 16 bytes count.
  friend bool operator==(const MxfUUID& a, const MxfUUID& b) { return a.m_key == b.m_key; }
  friend bool operator!=(const MxfUUID& a, const MxfUUID& b) { return a.m_key != b.m_key; }

 protected:
  // The bytes, for classes that read meaning into them.
  using Key = std::array<unsigned char, kSize>;
  [[nodiscard]] const Key& Bytes() const { return m_key; }

 private:
  friend struct std::less<MxfUUID>;
  Key m_key{};
};

// The order of every map that is keyed by MxfUUID.
template <>
struct std::less<MxfUUID> {
  // Byte by byte, as unsigned numbers, byte 0 first.
  bool operator()(const MxfUUID& left, MxfUUID right) const { return left.m_key < right.m_key; }
};

#endif  // CLIPPARSER_FOUNDATION_MXFUUID_H
