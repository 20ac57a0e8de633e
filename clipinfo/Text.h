#ifndef CLIPPARSER_CLIPINFO_TEXT_H
#define CLIPPARSER_CLIPINFO_TEXT_H

#include <ostream>
#include <string>
#include <string_view>

#include "foundation/MxfUUID.h"
#include "foundation/OxObject.h"
#include "foundation/OxSharedPtr.h"
#include "foundation/ParseMetaData.h"

// How the summary words things.

constexpr const char* kNotPresent = "not present";
constexpr const char* kUnreadable = "unreadable";

// Text of a file or a command line, safe for a terminal: control and direction characters and bytes that are no UTF-8
// appear as \xNN, byte by byte.
[[nodiscard]] std::string Escaped(std::string_view text);

// The name of a label: that of the catalogue, FBC_UL_ left out, else that of the public register's row; null for any
// other. Of two names of one label, the first.
[[nodiscard]] const char* LabelName(const MxfUUID& label);

// A metadata value; kNotPresent when empty. Labels of the catalogue by name, others as dotted hexadecimal.
[[nodiscard]] std::string ValueText(const OxSharedPtr<OxObject>& value);

[[nodiscard]] std::string HexText(const unsigned char* bytes, std::size_t count);
// " at offset 0x1A00 (6656)", to end a message.
[[nodiscard]] std::string PlaceText(unsigned long long offset);
[[nodiscard]] std::string RationalText(const _Rational& value);  // 16/9, or 25 when the denominator is 1
[[nodiscard]] bool isDateSet(const _Timestamp& date);            // ST 377-1 writes zeros for a date that is not known
[[nodiscard]] std::string DateText(const _Timestamp& date);

// What hours:minutes:seconds:frames count in; a base of 0 is unknown.
struct Timebase {
  long long base = 0;  // frames per second, rounded
  bool isDropFrame = false;
};
[[nodiscard]] Timebase TimebaseOf(const _Rational& editRate);
// hh:mm:ss:ff, or hh:mm:ss;ff for drop frame (SMPTE ST 12-1). The plain number when the base is not known.
[[nodiscard]] std::string TimecodeText(long long frames, const Timebase& timebase);

#endif  // CLIPPARSER_CLIPINFO_TEXT_H
