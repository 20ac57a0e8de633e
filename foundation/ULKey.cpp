#include "foundation/ULKey.h"

#include <algorithm>
#include <array>
#include <initializer_list>

namespace {

using Bytes16 = std::array<unsigned char, MxfUUID::kSize>;

// Whether the bytes from `first` on are `expected`.
bool Matches(const Bytes16& bytes, std::size_t first, std::initializer_list<unsigned char> expected) {
  return std::equal(expected.begin(), expected.end(), bytes.begin() + static_cast<std::ptrdiff_t>(first));
}

// The local-set coding: any tag and length coding, which lie in bits 3 to 6 (ST 336).
bool isLocalSetCoding(unsigned char byte5) { return (byte5 & 0x07) == 0x03; }

unsigned int PartitionOrIndexPack(const Bytes16& bytes) {
  if (bytes[12] != 0x01) return kKeyDefinedLengthPack;
  switch (bytes[13]) {
    case 0x02:
      return kKeyHeaderPartitionPack;
    case 0x03:
      return kKeyBodyPartitionPack;
    case 0x04:
      return kKeyFooterPartitionPack;
    case 0x05:
      return bytes[14] == 0x01 ? kKeyPrimerPack : kKeyDefinedLengthPack;
    case 0x11:
      return bytes[14] == 0x01 ? kKeyRandomIndexPack : kKeyDefinedLengthPack;
    default:
      return kKeyDefinedLengthPack;
  }
}

}  // namespace

ULKey::ULKey() = default;

ULKey::ULKey(const unsigned char* bytes) : MxfUUID(bytes) {}

ULKey::~ULKey() = default;

unsigned int ULKey::GetKeyType() const {
  if (!Matches(Bytes(), 0, {0x06, 0x0E, 0x2B, 0x34})) return kKeyNotSMPTE;
  switch (Bytes()[4]) {
    case 0x01:
      return Category_Dictionaries();
    case 0x02:
      return Category_Groups();
    case 0x03:
      return Category_WrappersAndContainers();
    case 0x04:
      return Category_Labels();
    case 0x05:
      return Category_RegisteredPrivateInformation();
    default:
      return kKeyUnrecognised;
  }
}

unsigned int ULKey::GetKeyKind() const { return KeyKind(GetKeyType()); }

unsigned int ULKey::Category_Dictionaries() const {
  switch (Bytes()[5]) {
    case 0x01:
      return Registry_MetadataDictionaries();
    case 0x02:
      return Registry_EssenceDictionaries();
    case 0x03:
      return kKeyControlDictionary;
    case 0x04:
      return kKeyTypesDictionary;
    default:
      return kKeyUnrecognised;
  }
}

unsigned int ULKey::Category_Groups() const {
  const unsigned char byte5 = Bytes()[5];
  if (byte5 == 0x01) return kKeyUniversalSet;
  if (byte5 == 0x02) return kKeyGlobalSet;
  if (isLocalSetCoding(byte5)) return byte5 <= 0x7B ? Registry_LocalSets() : kKeyUnrecognised;
  if (byte5 == 0x04) return kKeyVariableLengthPack;
  if (byte5 == 0x05) return Registry_DefinedLengthPacks();
  return kKeyUnrecognised;
}

unsigned int ULKey::Category_WrappersAndContainers() const {
  if (Bytes()[5] == 0x01) return kKeyWrapper;
  return Bytes()[5] == 0x02 ? kKeyContainer : kKeyUnrecognised;
}

unsigned int ULKey::Category_Labels() const { return kKeyLabel; }

unsigned int ULKey::Category_RegisteredPrivateInformation() const { return kKeyPrivate; }

unsigned int ULKey::Registry_MetadataDictionaries() const {
  const bool isSequenceInfo = Matches(Bytes(), 6, {0x01, 0x0D, 0x0E, 0x15, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00});
  return isSequenceInfo ? kKeyStreamFileSequenceInfo : kKeyMetadataItem;
}

unsigned int ULKey::Registry_EssenceDictionaries() const {
  // Byte 7, the registry's version, is not looked at.
  if (Bytes()[6] != 0x01 || !Matches(Bytes(), 8, {0x0D, 0x01, 0x03, 0x01})) return kKeyEssence;
  if (Bytes()[12] == 0x15) return kKeyPictureEssence;
  return Bytes()[12] == 0x16 ? kKeySoundEssence : kKeyEssence;
}

unsigned int ULKey::Registry_LocalSets() const {
  if (!Matches(Bytes(), 6, {0x01, 0x01, 0x0D, 0x01})) return kKeyLocalSet;
  if (Matches(Bytes(), 10, {0x01, 0x01, 0x01})) return LocalSets_StructuralMetadata();
  if (Matches(Bytes(), 10, {0x02, 0x01, 0x01, 0x10, 0x01})) return kKeyIndexTableSegment;
  if (Matches(Bytes(), 10, {0x03, 0x01, 0x04, 0x01, 0x02})) return kKeySystemItemLocalSet;
  return kKeyLocalSet;
}

unsigned int ULKey::Registry_DefinedLengthPacks() const {
  if (!Matches(Bytes(), 6, {0x01, 0x01, 0x0D, 0x01})) return kKeyDefinedLengthPack;
  if (Matches(Bytes(), 10, {0x02, 0x01})) return PartitionOrIndexPack(Bytes());
  if (Matches(Bytes(), 10, {0x03, 0x01, 0x04, 0x01, 0x01, 0x00})) return kKeySystemMetadataPack;
  return kKeyDefinedLengthPack;
}

unsigned int ULKey::LocalSets_StructuralMetadata() const {
  return kKeyStructuralSet | static_cast<unsigned int>(Bytes()[13] << 8 | Bytes()[14]);
}
