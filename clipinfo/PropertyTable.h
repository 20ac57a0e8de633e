#ifndef CLIPPARSER_CLIPINFO_PROPERTYTABLE_H
#define CLIPPARSER_CLIPINFO_PROPERTYTABLE_H

#include "foundation/OxSharedPtr.h"
#include "metadata/STMetadataSets.h"

// What header metadata is made of (SMPTE ST 377-1): the names of sets and properties, and how to read the properties
// that the library knows without answering them.

// The name that the standard gives a structural set, by the type of its key, see KeyType; null for one that is not
// known.
[[nodiscard]] const char* StandardSetName(unsigned int keyType);
// The name of a property by its static tag; null for one that is not known.
[[nodiscard]] const char* PropertyName(_LocalTag tag);
// The value of a property that PropertyName knows; empty when it is absent or coded in another way.
[[nodiscard]] OxSharedPtr<OxObject> PropertyValue(STMetadataSets& set, _LocalTag tag);
// Whether the property holds strong references: the sets that belong to this one.
[[nodiscard]] bool isReference(_LocalTag tag);

#endif  // CLIPPARSER_CLIPINFO_PROPERTYTABLE_H
