#ifndef CLIPPARSER_CLIPINFO_FRAMESCOMMAND_H
#define CLIPPARSER_CLIPINFO_FRAMESCOMMAND_H

#include <ostream>
#include <string>

#include "clipinfo/RowWriter.h"

struct FramesOptions {
  std::string path;
  std::string range;  // A:B, or empty for the whole clip
  RowFormat format = RowFormat::Text;
};

// clipinfo frames: prints a row for each edit unit. Throws CommandError; the rows before the fault are printed.
void RunFrames(std::ostream& out, const FramesOptions& options);

#endif  // CLIPPARSER_CLIPINFO_FRAMESCOMMAND_H
