#include "foundation/FormatText.h"

#include <cstdio>

std::string FormatText(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  std::string text = FormatTextV(format, arguments);
  va_end(arguments);
  return text;
}

std::string FormatTextV(const char* format, std::va_list arguments) {
  std::va_list measured;
  va_copy(measured, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, measured);
  va_end(measured);
  if (length < 0) return {};
  std::string text(static_cast<std::size_t>(length) + 1, '\0');  // vsnprintf ends what it writes with a zero byte
  if (std::vsnprintf(text.data(), text.size(), format, arguments) != length) return {};
  text.pop_back();
  return text;
}
