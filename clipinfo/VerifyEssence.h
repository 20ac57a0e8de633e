#ifndef CLIPPARSER_CLIPINFO_VERIFYESSENCE_H
#define CLIPPARSER_CLIPINFO_VERIFYESSENCE_H

#include <functional>
#include <optional>
#include <vector>

#include "clipinfo/VerifyFile.h"
#include "clipinfo/VerifyIndex.h"
#include "clipinfo/VerifyMetadata.h"

// An element of a content package as it lies in the file: any packet but fill.
struct PackageElement {
  MxfUUID key;
  unsigned int type = 0;          // see KeyType
  unsigned long long offset = 0;  // of the key
  unsigned long long valueOffset = 0;
  unsigned long long length = 0;  // of the value
};

// A content package (ST 379).
struct ContentPackage {
  unsigned long long editUnit = 0;
  std::vector<PackageElement> elements;
  std::optional<unsigned char> flags;  // of the index entry, if there is one
  bool isBroken = false;               // its packets could not be followed to its end
};

// Called for each content package in file order.
using PackageSink = std::function<void(const ContentPackage& package)>;

#endif  // CLIPPARSER_CLIPINFO_VERIFYESSENCE_H
