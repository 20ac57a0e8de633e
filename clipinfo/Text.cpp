#include "clipinfo/Text.h"

#include <algorithm>
#include <iomanip>
#include <sstream>

#include "foundation/MDValue.h"
#include "foundation/OxStringMac.h"

namespace {

// Beyond this, which is thousands of years, counting in hours means nothing.
constexpr long long kMostFrames = 1LL << 50;

// The forms of a UTF-8 character, by its first byte (RFC 3629). The smallest code tells an overlong form.
struct Utf8Form {
  unsigned char mask;
  unsigned char lead;
  std::size_t size;
  unsigned long smallest;
};
constexpr Utf8Form kUtf8Forms[] = {
    {0x80, 0x00, 1, 0x0}, {0xE0, 0xC0, 2, 0x80}, {0xF0, 0xE0, 3, 0x800}, {0xF8, 0xF0, 4, 0x10000}};

// Control characters, and those that change the direction of writing: they make a text look like another.
bool isHarmful(unsigned long code) {
  return code < 0x20 || (code >= 0x7F && code < 0xA0) || (code >= 0x2028 && code <= 0x202E) ||
         (code >= 0x2066 && code <= 0x2069);
}

unsigned char ByteAt(std::string_view text, std::size_t place) { return static_cast<unsigned char>(text[place]); }

// How many bytes the printable character at the beginning of `text` has; 0 when there is none.
std::size_t PrintableSize(std::string_view text) {
  for (const Utf8Form& form : kUtf8Forms) {
    if ((ByteAt(text, 0) & form.mask) != form.lead || form.size > text.size()) continue;
    unsigned long code = ByteAt(text, 0) & static_cast<unsigned char>(~form.mask);
    for (std::size_t i = 1; i < form.size; ++i) {
      if ((ByteAt(text, i) & 0xC0) != 0x80) return 0;
      code = code << 6 | (ByteAt(text, i) & 0x3Fu);
    }
    const bool isValid = code >= form.smallest && code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
    return isValid && !isHarmful(code) ? form.size : 0;
  }
  return 0;
}

std::string HexByte(unsigned char byte) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  return {kDigits[byte >> 4], kDigits[byte & 15]};
}

std::string Padded(long long number, int width) {
  std::ostringstream text;
  text << std::setw(width) << std::setfill('0') << number;
  return text.str();
}

// Drop frame counting leaves out the first numbers of each minute, but not of each tenth.
long long WithDroppedNumbers(long long frames, long long base) {
  const long long dropped = base / 15;
  const long long perMinute = base * 60 - dropped;
  const long long perTenMinutes = base * 600 - dropped * 9;
  const long long rest = frames % perTenMinutes;
  const long long minutes = rest < dropped ? 0 : (rest - dropped) / perMinute;
  return frames + dropped * (frames / perTenMinutes * 9 + minutes);
}

std::string MDValueText(const OxSharedPtr<MDValue>& value) {
  _Rational rational{};
  _Timestamp date{};
  if (GetValue(value, rational)) return RationalText(rational);
  if (GetValue(value, date)) return DateText(date);
  return value->Description()->UTF8String();
}

}  // namespace

std::string Escaped(std::string_view text) {
  std::string escaped;
  while (!text.empty()) {
    const std::size_t size = PrintableSize(text);
    escaped += size == 0 ? "\\x" + HexByte(ByteAt(text, 0)) : std::string(text.substr(0, size));
    text.remove_prefix(std::max<std::size_t>(size, 1));
  }
  return escaped;
}

std::string ValueText(const OxSharedPtr<OxObject>& value) {
  if (!value) return kNotPresent;
  if (const OxSharedPtr<OxStringMac> text = value) return "\"" + Escaped(text->UTF8String()) + "\"";
  if (const OxSharedPtr<MxfUUID> label = value) {
    const char* const name = LabelName(*label);
    if (name != nullptr) return name;
  }
  if (const OxSharedPtr<MDValue> scalar = value) return MDValueText(scalar);
  return Escaped(value->Description()->UTF8String());
}

std::string HexText(const unsigned char* bytes, std::size_t count) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) text += (i == 0 ? "" : ".") + HexByte(bytes[i]);
  return text;
}

std::string PlaceText(unsigned long long offset) {
  std::ostringstream text;
  text << " at offset 0x" << std::uppercase << std::hex << offset << " (" << std::dec << offset << ')';
  return text.str();
}

std::string RationalText(const _Rational& value) {
  const std::string numerator = std::to_string(value.numerator);
  return value.denominator == 1 ? numerator : numerator + "/" + std::to_string(value.denominator);
}

bool isDateSet(const _Timestamp& date) { return date.year != 0 || date.month != 0 || date.day != 0; }

std::string DateText(const _Timestamp& date) {
  if (!isDateSet(date)) return "not set";
  return Padded(date.year, 4) + "-" + Padded(date.month, 2) + "-" + Padded(date.day, 2) + " " + Padded(date.hour, 2) +
         ":" + Padded(date.minute, 2) + ":" + Padded(date.second, 2) + "." + Padded(date.quarterMilliseconds * 4LL, 3);
}

Timebase TimebaseOf(const _Rational& editRate) {
  if (editRate.numerator <= 0 || editRate.denominator <= 0) return {};
  const long long half = editRate.denominator / 2;
  return {(editRate.numerator + half) / editRate.denominator, false};
}

std::string TimecodeText(long long frames, const Timebase& timebase) {
  if (timebase.base <= 0 || frames < 0 || frames > kMostFrames) return std::to_string(frames);
  const long long counted = timebase.isDropFrame ? WithDroppedNumbers(frames, timebase.base) : frames;
  const long long seconds = counted / timebase.base;
  return Padded(seconds / 3600, 2) + ":" + Padded(seconds / 60 % 60, 2) + ":" + Padded(seconds % 60, 2) +
         (timebase.isDropFrame ? ";" : ":") + Padded(counted % timebase.base, 2);
}
