#ifndef CLIPPARSER_CLIPINFO_TERMINAL_H
#define CLIPPARSER_CLIPINFO_TERMINAL_H

#include <string>

// Colours on the standard output: only on a terminal, and not under NO_COLOR (https://no-color.org) or TERM=dumb.

enum class Tone { Heading, Name, Fault };
// The text, between the codes of its tone where colours are shown.
[[nodiscard]] std::string Toned(const std::string& text, Tone tone);

#endif  // CLIPPARSER_CLIPINFO_TERMINAL_H
