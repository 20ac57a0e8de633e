#include "foundation/OxStringMac.h"

#include <cstdarg>

#include "foundation/FormatText.h"

namespace {

constexpr unsigned int kReplacementCharacter = 0xFFFD;

bool isHighSurrogate(unsigned int unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool isLowSurrogate(unsigned int unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

unsigned int UnitAt(const char* bytes, std::size_t index) {
  const auto high = static_cast<unsigned char>(bytes[2 * index]);
  const auto low = static_cast<unsigned char>(bytes[2 * index + 1]);
  return static_cast<unsigned int>(high << 8 | low);
}

void AppendUTF8(std::string& text, unsigned int character) {
  const auto append = [&text](unsigned int byte) { text.push_back(static_cast<char>(byte)); };
  const auto appendTail = [&](int shift) { append(0x80 | (character >> shift & 0x3F)); };
  if (character < 0x80) {
    append(character);
  } else if (character < 0x800) {
    append(0xC0 | character >> 6);
    appendTail(0);
  } else if (character < 0x10000) {
    append(0xE0 | character >> 12);
    appendTail(6);
    appendTail(0);
  } else {
    append(0xF0 | character >> 18);
    appendTail(12);
    appendTail(6);
    appendTail(0);
  }
}

std::string FromUTF16BE(const char* bytes, std::size_t byteCount) {
  const std::size_t count = byteCount / 2;
  std::string text;
  for (std::size_t i = 0; i < count; ++i) {
    const unsigned int unit = UnitAt(bytes, i);
    if (isHighSurrogate(unit) && i + 1 < count && isLowSurrogate(UnitAt(bytes, i + 1))) {
      AppendUTF8(text, 0x10000 + ((unit - 0xD800) << 10) + (UnitAt(bytes, i + 1) - 0xDC00));
      ++i;
    } else {
      AppendUTF8(text, isHighSurrogate(unit) || isLowSurrogate(unit) ? kReplacementCharacter : unit);
    }
  }
  return text;
}

std::string Decode(const char* bytes, std::size_t byteCount, _OxString_CharCode code) {
  if (bytes == nullptr) return {};
  return code == kOxStringCharCodeUTF16BE ? FromUTF16BE(bytes, byteCount) : std::string(bytes, byteCount);
}

std::size_t TerminatedLength(const char* text, _OxString_CharCode code) {
  if (text == nullptr) return 0;
  if (code != kOxStringCharCodeUTF16BE) return std::char_traits<char>::length(text);
  std::size_t units = 0;
  while (UnitAt(text, units) != 0) ++units;
  return 2 * units;
}

}  // namespace

OxStringMac::OxStringMac() = default;

OxStringMac::OxStringMac(const char* text, _OxString_CharCode code)
    : m_text(Decode(text, TerminatedLength(text, code), code)) {}

OxStringMac::OxStringMac(const char* bytes, unsigned int byteCount, _OxString_CharCode code)
    : m_text(Decode(bytes, byteCount, code)) {}

OxStringMac::OxStringMac(std::string text) : m_text(std::move(text)) {}

OxStringMac::OxStringMac(const OxStringMac& other) : OxObject(other), m_text(other.m_text) {}

OxStringMac::~OxStringMac() = default;

OxStringMac& OxStringMac::operator=(const OxStringMac& other) = default;

OxSharedPtr<OxStringMac> OxStringMac::CreateFormatted(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  std::string text = FormatTextV(format, arguments);
  va_end(arguments);
  return CreateOxString(std::move(text));
}

OxStringMac OxStringMac::operator+(const OxStringMac& other) const {
  OxStringMac sum(*this);
  sum.m_text += other.m_text;
  return sum;
}

OxSharedPtr<OxStringMac> OxStringMac::Description() { return OxSharedPtr<OxStringMac>(new OxStringMac(*this)); }
