#ifndef CLIPPARSER_CLIPINFO_PACKAGES_H
#define CLIPPARSER_CLIPINFO_PACKAGES_H

#include <ostream>

#include "clipinfo/Text.h"
#include "metadata/HeaderMetadata.h"

// Prints the material and source packages of the clip in the order in which the header lists them, each with its
// tracks, their components and their descriptors.
void PrintPackages(std::ostream& out, const HeaderMetadata& header);

// What the clip's timecode counts in: the first timecode of the first material package or, without one, the edit rate
// of its first track.
[[nodiscard]] Timebase ClipTimebase(const HeaderMetadata& header);

#endif  // CLIPPARSER_CLIPINFO_PACKAGES_H
