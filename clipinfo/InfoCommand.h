#ifndef CLIPPARSER_CLIPINFO_INFOCOMMAND_H
#define CLIPPARSER_CLIPINFO_INFOCOMMAND_H

#include <ostream>
#include <string>

// clipinfo info: prints a summary of one clip for the eye. Throws CommandError when it cannot be opened.
void RunInfo(std::ostream& out, const std::string& path);

#endif  // CLIPPARSER_CLIPINFO_INFOCOMMAND_H
