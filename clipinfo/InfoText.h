#ifndef CLIPPARSER_CLIPINFO_INFOTEXT_H
#define CLIPPARSER_CLIPINFO_INFOTEXT_H

#include <ostream>

#include "clipinfo/Json.h"

// Prints a document of the info command for people: what the clip is first, then its partitions and tracks as tables.
// Identifiers are left out; the tree command and --json have them.
void PrintInfo(std::ostream& out, const Json& document);

#endif  // CLIPPARSER_CLIPINFO_INFOTEXT_H
