#ifndef CLIPPARSER_FOUNDATION_ULKEY_H
#define CLIPPARSER_FOUNDATION_ULKEY_H

#include "foundation/Export.h"
#include "foundation/MxfUUID.h"

// What a key is, as GetKeyType tells it: the top byte is the kind, the low 24 bits refine it. A structural metadata
// set is kKeyStructuralSet with the set's two identifying bytes in its low half.
enum KeyType : unsigned int {
  kKeyNotSMPTE = 0x00000000,
  kKeyUnrecognised = 0x01000000,  // a SMPTE label of no category or registry known here
  kKeyMetadataItem = 0x02000000,
  kKeyStreamFileSequenceInfo = 0x02000001,
  kKeyEssence = 0x03000000,
  kKeyPictureEssence = 0x03000001,
  kKeySoundEssence = 0x03000002,
  kKeyControlDictionary = 0x04000000,
  kKeyTypesDictionary = 0x05000000,
  kKeyUniversalSet = 0x06000000,
  kKeyGlobalSet = 0x07000000,
  kKeyLocalSet = 0x08000000,
  kKeyIndexTableSegment = 0x08000001,
  kKeySystemItemLocalSet = 0x08000002,
  kKeyStructuralSet = 0x08010000,
  kKeyCDCIDescriptor = 0x08010128,
  kKeyRGBADescriptor = 0x08010129,
  kKeyPreface = 0x0801012F,
  kKeyMaterialPackage = 0x08010136,
  kKeySourcePackage = 0x08010137,
  kKeyMultipleDescriptor = 0x08010144,
  kKeyVariableLengthPack = 0x09000000,
  kKeyDefinedLengthPack = 0x0A000000,
  kKeyHeaderPartitionPack = 0x0A000001,
  kKeyBodyPartitionPack = 0x0A000002,
  kKeyFooterPartitionPack = 0x0A000003,
  kKeyPrimerPack = 0x0A000004,
  kKeyRandomIndexPack = 0x0A000005,
  kKeySystemMetadataPack = 0x0A000006,
  kKeyWrapper = 0x0B000000,
  kKeyContainer = 0x0C000000,
  kKeyLabel = 0x0D000000,
  kKeyPrivate = 0x0E000000,
};

// The kind of a key type: its top byte.
constexpr unsigned int KeyKind(unsigned int keyType) { return keyType & 0xFF000000u; }
// Whether a key type is a structural metadata set of any kind.
constexpr bool isStructuralSet(unsigned int keyType) { return (keyType & 0xFFFF0000u) == kKeyStructuralSet; }

// A SMPTE universal label (ST 298) that tells what it stands for. Classifying never fails: any 16 bytes give a code.
class CLIPPARSER_EXPORT ULKey : public MxfUUID {
 public:
  ULKey();
  // Copies 16 bytes; null gives zeros.
  ULKey(const unsigned char* bytes);
  ULKey(const ULKey&) = default;
  ULKey& operator=(const ULKey&) = default;
  using MxfUUID::operator=;
  ~ULKey() override;

  // What the key stands for, a KeyType or, for structural sets, one of its kind; and the kind alone.
  [[nodiscard]] unsigned int GetKeyType() const;
  [[nodiscard]] unsigned int GetKeyKind() const;

  // The steps of the classification: each gives the code of its branch, whatever the bytes that lead to the branch.
  // Bytes are numbered 0 to 15.
  [[nodiscard]] unsigned int Category_Dictionaries() const;                  // byte 4 is 01
  [[nodiscard]] unsigned int Category_Groups() const;                        // 02
  [[nodiscard]] unsigned int Category_WrappersAndContainers() const;         // 03
  [[nodiscard]] unsigned int Category_Labels() const;                        // 04
  [[nodiscard]] unsigned int Category_RegisteredPrivateInformation() const;  // 05
  [[nodiscard]] unsigned int Registry_MetadataDictionaries() const;          // bytes 4-5 are 01 01
  [[nodiscard]] unsigned int Registry_EssenceDictionaries() const;           // 01 02
  [[nodiscard]] unsigned int Registry_LocalSets() const;                     // 02 and a local set's coding
  [[nodiscard]] unsigned int Registry_DefinedLengthPacks() const;            // 02 05
  [[nodiscard]] unsigned int LocalSets_StructuralMetadata() const;           // bytes 6-12 are 01 01 0D 01 01 01 01
};

#endif  // CLIPPARSER_FOUNDATION_ULKEY_H
