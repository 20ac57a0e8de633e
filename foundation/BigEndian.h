#ifndef CLIPPARSER_FOUNDATION_BIGENDIAN_H
#define CLIPPARSER_FOUNDATION_BIGENDIAN_H

#include <cstddef>

// The unsigned number in `count` bytes, most significant first, as MXF stores every number (SMPTE ST 377-1).
template <class Unsigned>
constexpr Unsigned LoadBigEndian(const unsigned char* bytes, std::size_t count = sizeof(Unsigned)) {
  unsigned long long value = 0;
  for (std::size_t i = 0; i < count; ++i) value = value << 8 | bytes[i];
  return static_cast<Unsigned>(value);
}

#endif  // CLIPPARSER_FOUNDATION_BIGENDIAN_H
