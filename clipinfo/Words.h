#ifndef CLIPPARSER_CLIPINFO_WORDS_H
#define CLIPPARSER_CLIPINFO_WORDS_H

#include <string>

#include "clipinfo/Json.h"

// Values of documents as people read them, safe for a terminal.

// One value: kNotPresent for null, labels by name, lists with commas.
[[nodiscard]] std::string Word(const Json& value);
// 1 track, 2 tracks
[[nodiscard]] std::string Counted(unsigned long count, const char* noun);

#endif  // CLIPPARSER_CLIPINFO_WORDS_H
