#include "clipinfo/Terminal.h"

#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace {

std::string_view Environment(const char* name) {
  const char* const value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): nothing here sets the environment
  return value != nullptr ? value : "";
}

bool isColourShown() {
  static const bool isShown =
      ::isatty(STDOUT_FILENO) == 1 && Environment("NO_COLOR").empty() && Environment("TERM") != "dumb";
  return isShown;
}

const char* CodeOf(Tone tone) {
  switch (tone) {
    case Tone::Heading:
      return "\033[1m";
    case Tone::Name:
      return "\033[36m";
    case Tone::Fault:
      return "\033[31m";
  }
  return "";
}

}  // namespace

std::string Toned(const std::string& text, Tone tone) {
  return isColourShown() ? CodeOf(tone) + text + "\033[0m" : text;
}
