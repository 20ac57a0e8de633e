#ifndef CLIPPARSER_METADATA_STMETADATASETS_H
#define CLIPPARSER_METADATA_STMETADATASETS_H

#include "foundation/MDValue.h"
#include "klv/LocalSets.h"
#include "klv/PrimerPack.h"

// One component of an RGBA pixel: its code letter and its depth in bits (SMPTE ST 377-1).
struct CLIPPARSER_EXPORT tagRGBALayout {
  unsigned char code;   // 'R', 'G', 'B', 'A' and so on; 0 ends the layout
  unsigned char depth;  // bits
};

// One structural metadata set of the header metadata (SMPTE ST 377-1): preface, package, track, descriptor and so on.
// A local set that knows, for each standard tag, what its value is. The values are new objects, which the caller owns.
// Every accessor gives an empty pointer when the set does not hold the tag, or holds it with another length than its
// type has.
//
// Threads: once imported, a set may be asked from any number of threads.
class CLIPPARSER_EXPORT STMetadataSets : public LocalSets {
 public:
  // Empty until Import; with key and offsets of a packet that was read generically, if one is given.
  STMetadataSets();
  explicit STMetadataSets(OxSharedPtr<KLVPacket> packet);
  ~STMetadataSets() override;

  // The value of a tag as an object of the class that the tag's type asks for: MDValue for numbers, dates and
  // rationals; MxfUUID for labels and references; OxMutableArray of MxfUUID for batches of them; UMID; OxStringMac;
  // OxVector<unsigned char>, OxVector<int> or OxVector<tagRGBALayout> for raw bytes, line maps and pixel layouts;
  // OxMutableArray of OxVector<unsigned char> for arrays of raw elements. Empty for any other tag, and for 320F, 3218,
  // 3309, 330A, 3B04, 3B07, 3B08, 3C03, 3C07, 3C08 and 4402, which are known and not answered.
  [[nodiscard]] OxSharedPtr<OxObject> ValueForTag(_LocalTag tag);
  // The name that the standard gives the property of a tag which ValueForTag answers; null for any other.
  [[nodiscard]] static const char* NameForTag(_LocalTag tag);

  // The item as a scalar, when its length is exactly `size`.
  [[nodiscard]] OxSharedPtr<MDValue> ValueForTagAndType(_LocalTag tag, _MDValueType type, unsigned int size);
  // 16 bytes.
  [[nodiscard]] OxSharedPtr<MxfUUID> UUIDForTag(_LocalTag tag);
  // A batch or array of 16-byte items: count (4), item size (4), items.
  [[nodiscard]] OxSharedPtr<OxMutableArray> UUIDArrayValueForTag(_LocalTag tag);
  // How many items that array has, and the one at an index, without making the array; 0 and empty where there is none.
  [[nodiscard]] unsigned int UUIDCountForTag(_LocalTag tag);
  [[nodiscard]] OxSharedPtr<MxfUUID> UUIDAtIndexForTag(_LocalTag tag, unsigned int index);
  // Two-byte characters over the item's length.
  [[nodiscard]] OxSharedPtr<OxStringMac> OxStringValueForTag(_LocalTag tag);
  // 32 or 64 bytes (ST 330).
  [[nodiscard]] OxSharedPtr<UMID> UMIDForTag(_LocalTag tag);
  // The item's bytes.
  [[nodiscard]] OxSharedPtr<OxVector<unsigned char>> EnumForTag(_LocalTag tag);
  // count (4), element size (4), elements. Count times size must be the rest of the item; elements are read as 4 bytes
  // whatever their stated size.
  [[nodiscard]] OxSharedPtr<OxVector<int>> SInt32ArrayForTag(_LocalTag tag);
  // Eight pairs when the item is 16 bytes long, zero pairs included; an empty vector when it has another length.
  [[nodiscard]] OxSharedPtr<OxVector<tagRGBALayout>> PixelLayoutForTag(_LocalTag tag);
  // count (4), element size (4), elements: one byte vector each. Count times size must be the rest of the item.
  [[nodiscard]] OxSharedPtr<OxMutableArray> EnumArrayForTag(_LocalTag tag);

  // The value of one of the MPEG video properties FBC_UL_MER_*, whose tags the primer assigns. Empty for any other
  // label, for one that the primer does not know, and when either pointer is empty.
  [[nodiscard]] OxSharedPtr<OxObject> ValueForUUID(OxSharedPtr<MxfUUID> label, OxSharedPtr<PrimerPack> primer);
};

#endif  // CLIPPARSER_METADATA_STMETADATASETS_H
