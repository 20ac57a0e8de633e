#ifndef CLIPPARSER_FOUNDATION_OXSTRINGMAC_H
#define CLIPPARSER_FOUNDATION_OXSTRINGMAC_H

#include <string>
#include <utility>

#include "foundation/Export.h"
#include "foundation/OxObject.h"
#include "foundation/OxSharedPtr.h"

// How the bytes given to an OxStringMac are coded. A plain number, because hosts pass it as one.
using _OxString_CharCode = unsigned int;
constexpr _OxString_CharCode kOxStringCharCode8Bit = 0;     // 8-bit text, kept byte for byte
constexpr _OxString_CharCode kOxStringCharCodeUTF16BE = 1;  // two-byte characters, big-endian, as MXF stores them

// A text. Held as UTF-8; two-byte text is converted when the string is made: surrogate pairs become one character, an
// unpaired surrogate becomes U+FFFD, a last odd byte is dropped. Zero characters are kept where they stand.
// 8-bit text is kept as it is, whatever its bytes, so that a file path survives.
class CLIPPARSER_EXPORT OxStringMac : public virtual OxObject {
 public:
  OxStringMac();
  // `text` ends at its first zero byte (8-bit) or zero character (two-byte); null gives an empty string.
  OxStringMac(const char* text, _OxString_CharCode code);
  OxStringMac(const char* bytes, unsigned int byteCount, _OxString_CharCode code);
  // Takes a finished text, zero characters included.
  explicit OxStringMac(std::string text);
  // A copy of the text.
  OxStringMac(const OxStringMac& other);
  ~OxStringMac() override;
  OxStringMac& operator=(const OxStringMac& other);
  using OxObject::operator=;

  // printf-style. `format` must come from the program, never from a file. Empty when `format` is empty.
  template <class... Args>
  static OxSharedPtr<OxStringMac> CreateWithFormat(OxSharedPtr<OxStringMac> format, Args... args) {
    return format ? CreateFormatted(format->UTF8String(), args...) : OxSharedPtr<OxStringMac>();
  }

  // Both texts, one behind the other.
  OxStringMac operator+(const OxStringMac& other) const;

  // The text as a C string, valid until the string is assigned to or deleted. A host that prints it stops at the first
  // zero character, which is where writers of MXF end their texts.
  [[nodiscard]] const char* UTF8String() const { return m_text.c_str(); }
  // Bytes of the whole text in UTF-8, zero characters included.
  [[nodiscard]] unsigned long ByteCount() const { return m_text.size(); }

  OxSharedPtr<OxStringMac> Description() override;

 private:
  static OxSharedPtr<OxStringMac> CreateFormatted(const char* format, ...);

  std::string m_text;
};

inline OxSharedPtr<OxStringMac> CreateOxString(std::string text) {
  return OxSharedPtr<OxStringMac>(new OxStringMac(std::move(text)));
}

#endif  // CLIPPARSER_FOUNDATION_OXSTRINGMAC_H
