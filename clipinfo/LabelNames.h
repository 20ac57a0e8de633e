#ifndef CLIPPARSER_CLIPINFO_LABELNAMES_H
#define CLIPPARSER_CLIPINFO_LABELNAMES_H

#include "foundation/MxfUUID.h"

// The name of a label of the catalogue, FBC_UL_ left out; null for any other. Of two names of one label, the first.
[[nodiscard]] const char* LabelName(const MxfUUID& label);

#endif  // CLIPPARSER_CLIPINFO_LABELNAMES_H
