#ifndef CLIPPARSER_CLIPINFO_EXTRACTCOMMAND_H
#define CLIPPARSER_CLIPINFO_EXTRACTCOMMAND_H

#include <string>

struct ExtractOptions {
  std::string path;
  unsigned int element = 0;
  std::string range;   // A:B, or empty for the whole clip
  std::string output;  // a path, or - for the standard output
};

// clipinfo extract: writes one element's bytes of each edit unit, in order. Throws CommandError, and then leaves no
// output file behind.
void RunExtract(const ExtractOptions& options);

#endif  // CLIPPARSER_CLIPINFO_EXTRACTCOMMAND_H
