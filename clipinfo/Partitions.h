#ifndef CLIPPARSER_CLIPINFO_PARTITIONS_H
#define CLIPPARSER_CLIPINFO_PARTITIONS_H

#include <ostream>

#include "clipinfo/Clip.h"

// Prints a row for each partition of the file: those that the random index pack lists or, in a file without one, those
// that the links lead to, backwards from the footer.
void PrintPartitions(std::ostream& out, Clip& clip);

#endif  // CLIPPARSER_CLIPINFO_PARTITIONS_H
