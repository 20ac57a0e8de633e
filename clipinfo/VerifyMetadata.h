#ifndef CLIPPARSER_CLIPINFO_VERIFYMETADATA_H
#define CLIPPARSER_CLIPINFO_VERIFYMETADATA_H

#include <map>
#include <set>
#include <vector>

#include "clipinfo/VerifyFile.h"
#include "foundation/MDValue.h"
#include "metadata/STMetadataSets.h"

// The kind of a structural set: the two bytes that tell it in its key (ST 377-1).
enum SetKind : unsigned int {
  kNoStructuralSet = 0,
  kSequence = 0x010F,
  kSourceClip = 0x0111,
  kTimecodeComponent = 0x0114,
  kContentStorage = 0x0118,
  kEssenceContainerData = 0x0123,
  kPreface = 0x012F,
  kIdentification = 0x0130,
  kMaterialPackage = 0x0136,
  kSourcePackage = 0x0137,
  kTrack = 0x013B,
  kMultipleDescriptor = 0x0144,
};
[[nodiscard]] bool isDescriptor(unsigned int kind);
[[nodiscard]] const char* SetName(unsigned int kind);
// "tag 3B03 (ContentStorage)".
[[nodiscard]] std::string TagText(unsigned int tag);

// A metadata set as it lies in the file.
struct MetadataSet {
  unsigned int kind = kNoStructuralSet;
  unsigned long long offset = 0;
  OxSharedPtr<STMetadataSets> set;
  std::vector<unsigned short> tags;  // in file order
  OxSharedPtr<MxfUUID> uid;

  template <class Number>
  [[nodiscard]] bool Get(_LocalTag tag, Number& number) const {
    return GetValue(set->ValueForTag(tag), number);
  }
  // The references of an item: one, or a batch. `isWhole` tells whether the item holds what its head says.
  [[nodiscard]] std::vector<MxfUUID> References(_LocalTag tag, bool* isWhole = nullptr) const;
};

// The header metadata of one partition.
struct MetadataGraph {
  OxSharedPtr<PartitionPack> pack;
  std::map<unsigned short, MxfUUID> primer;  // label by tag
  std::vector<MetadataSet> sets;
  std::map<MxfUUID, const MetadataSet*> byUID;
  const MetadataSet* preface = nullptr;

  [[nodiscard]] const MetadataSet* Find(const MxfUUID& uid) const;
  [[nodiscard]] std::vector<const MetadataSet*> Referenced(const MetadataSet& set, _LocalTag tag) const;
};

// What the header metadata says of the essence.
struct EssenceFacts {
  long long duration = -1;  // edit units; negative when it is not told
  _Rational editRate{};
  std::set<unsigned int> bodySIDs, indexSIDs;
  std::set<unsigned int> trackNumbers;  // of the tracks of source packages that have essence
};

#endif  // CLIPPARSER_CLIPINFO_VERIFYMETADATA_H
