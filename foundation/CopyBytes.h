#ifndef CLIPPARSER_FOUNDATION_COPYBYTES_H
#define CLIPPARSER_FOUNDATION_COPYBYTES_H

#include <cstring>

// memcpy. The sizes of which most fields are become one or two moves each instead of a call.
inline void CopyBytes(unsigned char* to, const unsigned char* from, unsigned long long count) {
  switch (count) {
    case 1:
      std::memcpy(to, from, 1);
      break;
    case 2:
      std::memcpy(to, from, 2);
      break;
    case 4:
      std::memcpy(to, from, 4);
      break;
    case 8:
      std::memcpy(to, from, 8);
      break;
    case 16:
      std::memcpy(to, from, 16);
      break;
    default:
      std::memcpy(to, from, count);
  }
}

#endif  // CLIPPARSER_FOUNDATION_COPYBYTES_H
