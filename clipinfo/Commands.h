#ifndef CLIPPARSER_CLIPINFO_COMMANDS_H
#define CLIPPARSER_CLIPINFO_COMMANDS_H

#include <ostream>
#include <string>

#include "clipinfo/RowWriter.h"

// The commands. Each throws CommandError, or what the library throws, and says nothing of it itself.

// Prints a summary of one clip for the eye.
void RunInfo(std::ostream& out, const std::string& path);

struct FramesOptions {
  std::string path;
  std::string range;  // A:B, or empty for the whole clip
  RowFormat format = RowFormat::Text;
};
// Prints a row for each edit unit. The rows before a fault are printed.
void RunFrames(std::ostream& out, const FramesOptions& options);

struct ExtractOptions {
  std::string path;
  unsigned int element = 0;
  std::string range;   // as above
  std::string output;  // a path, or - for the standard output
};
// Writes one element's bytes of each edit unit, in order. After a fault no output file is left behind.
void RunExtract(const ExtractOptions& options);

#endif  // CLIPPARSER_CLIPINFO_COMMANDS_H
