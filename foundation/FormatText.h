#ifndef CLIPPARSER_FOUNDATION_FORMATTEXT_H
#define CLIPPARSER_FOUNDATION_FORMATTEXT_H

#include <cstdarg>
#include <string>

// printf into a string of the right size. Inside the library only; `format` is always a literal of the library or, in
// OxStringMac::CreateWithFormat, of the host. Empty when the C library refuses the conversion.
std::string FormatText(const char* format, ...) __attribute__((format(printf, 1, 2)));
std::string FormatTextV(const char* format, std::va_list arguments);

#endif  // CLIPPARSER_FOUNDATION_FORMATTEXT_H
