#ifndef CLIPPARSER_FOUNDATION_UMID_H
#define CLIPPARSER_FOUNDATION_UMID_H

#include <algorithm>
#include <array>

#include "foundation/Export.h"
#include "foundation/OxObject.h"
#include "foundation/OxSharedPtr.h"
#include "foundation/OxStringMac.h"

// The identifier of a package (SMPTE ST 330): 32 bytes (basic) or 64 (extended), in file order. Not synchronised.
class CLIPPARSER_EXPORT UMID : public OxObject {
 public:
  // The two lengths that a UMID may have, in bytes.
  static constexpr unsigned int kBasicSize = 32;
  static constexpr unsigned int kExtendedSize = 64;

  UMID();  // no valid bytes
  ~UMID() override;

  // Copies `length` bytes.
  //   kStatusOK       the bytes and the length are stored
  //   kStatusNoInput  `bytes` is null or `length` is neither 32 nor 64; nothing changed
  unsigned int SetData(const unsigned char* bytes, int length);

  // Throws "Index range error" (const char*) when `index` is not below the length; an empty UMID throws for all.
  [[nodiscard]] unsigned char ValueAtIndex(unsigned int index) const;

  // Equal lengths and equal bytes over that length; false for an empty pointer.
  [[nodiscard]] bool isEqualToUMID(OxSharedPtr<UMID> other) const;

  // For hosts that number the packages of a camera which left the serial area (bytes 27 to 31) empty.
  // True when the five bytes are all zero, whatever the length.
  [[nodiscard]] bool IsNotFillSerialArea() const;
  // Copies five bytes into the serial area; null does nothing. The length stays.
  void CorrectSerialArea(const unsigned char* serial);

  // The valid bytes in upper-case hexadecimal, joined with points; empty for an empty UMID.
  OxSharedPtr<OxStringMac> Description() override;

  // 0, 32 or 64.
  [[nodiscard]] unsigned int Length() const { return m_length; }

  // Orders by length, then bytes; equal exactly when isEqualToUMID says so.
  friend bool operator<(const UMID& a, const UMID& b) {
    if (a.m_length != b.m_length) return a.m_length < b.m_length;
    return std::lexicographical_compare(a.m_data.begin(), a.m_data.begin() + a.m_length, b.m_data.begin(),
                                        b.m_data.begin() + b.m_length);
  }

 private:
  std::array<unsigned char, kExtendedSize> m_data{};
  unsigned char m_length = 0;
};

#endif  // CLIPPARSER_FOUNDATION_UMID_H
