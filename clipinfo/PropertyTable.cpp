#include "clipinfo/PropertyTable.h"

#include <algorithm>
#include <iterator>

namespace {

struct SetRow {
  unsigned int keyType;
  const char* name;
};
constexpr SetRow kSets[] = {
    {0x0801010F, "Sequence"},
    {0x08010111, "SourceClip"},
    {0x08010114, "TimecodeComponent"},
    {0x08010118, "ContentStorage"},
    {0x08010123, "EssenceContainerData"},
    {0x08010125, "FileDescriptor"},
    {0x08010127, "GenericPictureEssenceDescriptor"},
    {kKeyCDCIDescriptor, "CDCIEssenceDescriptor"},
    {kKeyRGBADescriptor, "RGBAEssenceDescriptor"},
    {kKeyPreface, "Preface"},
    {0x08010130, "Identification"},
    {0x08010132, "NetworkLocator"},
    {0x08010133, "TextLocator"},
    {kKeyMaterialPackage, "MaterialPackage"},
    {kKeySourcePackage, "SourcePackage"},
    {0x08010139, "EventTrack"},
    {0x0801013A, "StaticTrack"},
    {0x0801013B, "Track"},
    {0x08010141, "DMSegment"},
    {0x08010142, "GenericSoundEssenceDescriptor"},
    {0x08010143, "GenericDataEssenceDescriptor"},
    {kKeyMultipleDescriptor, "MultipleDescriptor"},
    {0x08010147, "AES3AudioDescriptor"},
    {0x08010148, "WaveAudioDescriptor"},
    {0x08010151, "MPEGVideoDescriptor"},
    {0x0801015B, "VBIDataDescriptor"},
    {0x0801015C, "ANCDataDescriptor"},
};

// How a property is read that the library does not answer for; a label stands for any 16-byte identifier.
enum class Read { Bytes, Text, UInt8, UInt32, Int64, Rational, Label, Labels };

struct PropertyRow {
  _LocalTag tag;
  const char* name;
  Read read;
};
constexpr PropertyRow kProperties[] = {
    {0x0601, "EventStartPosition", Read::Int64},
    {0x0602, "EventComment", Read::Text},
    {0x2F01, "Locators", Read::Labels},
    {0x3002, "ContainerDuration", Read::Int64},
    {0x3005, "Codec", Read::Label},
    {0x320F, "AlphaTransparency", Read::UInt8},
    {0x3218, "ActiveFormatDescriptor", Read::UInt8},
    {0x321A, "CodingEquations", Read::Label},
    {0x3309, "AlphaSampleDepth", Read::UInt32},
    {0x3403, "Palette", Read::Bytes},
    {0x3404, "PaletteLayout", Read::Bytes},
    {0x3408, "AlphaMaxRef", Read::UInt32},
    {0x3409, "AlphaMinRef", Read::UInt32},
    {0x3B07, "ObjectModelVersion", Read::UInt32},
    {0x3B08, "PrimaryPackage", Read::Label},
    {0x3C03, "ProductVersion", Read::Bytes},
    {0x3C07, "ToolkitVersion", Read::Bytes},
    {0x3C08, "Platform", Read::Text},
    {0x3D05, "ElectroSpatialFormulation", Read::UInt8},
    {0x3D06, "SoundEssenceCompression", Read::Label},
    {0x3D0C, "DialNorm", Read::UInt8},
    {0x3E01, "DataEssenceCoding", Read::Label},
    {0x4001, "URLString", Read::Text},
    {0x4101, "LocatorName", Read::Text},
    {0x4402, "Name", Read::Text},
    {0x4802, "TrackName", Read::Text},
    {0x4901, "EventEditRate", Read::Rational},
    {0x4902, "EventOrigin", Read::Int64},
    {0x6101, "DMFramework", Read::Label},
};

// In the dynamic range the library answers one tag of references, too: the sub-descriptors of its cameras.
constexpr _LocalTag kReferences[] = {0x1001, 0x1901, 0x1902, 0x2F01, 0x3B03, 0x3B06,
                                     0x3F01, 0x4403, 0x4701, 0x4803, 0x6101, 0x8080};

const PropertyRow* RowOf(_LocalTag tag) {
  const auto* const row =
      std::find_if(std::begin(kProperties), std::end(kProperties), [tag](const auto& each) { return each.tag == tag; });
  return row == std::end(kProperties) ? nullptr : row;
}

OxSharedPtr<OxObject> ValueOf(STMetadataSets& set, const PropertyRow& row) {
  switch (row.read) {
    case Read::Bytes:
      return set.EnumForTag(row.tag);
    case Read::Text:
      return set.OxStringValueForTag(row.tag);
    case Read::UInt8:
      return set.ValueForTagAndType(row.tag, MDValueType_UInt8, 1);
    case Read::UInt32:
      return set.ValueForTagAndType(row.tag, MDValueType_UInt32, 4);
    case Read::Int64:
      return set.ValueForTagAndType(row.tag, MDValueType_Int64, 8);
    case Read::Rational:
      return set.ValueForTagAndType(row.tag, MDValueType_Rational, 8);
    case Read::Label:
      return set.UUIDForTag(row.tag);
    case Read::Labels:
      return set.UUIDArrayValueForTag(row.tag);
  }
  return {};
}

}  // namespace

const char* StandardSetName(unsigned int keyType) {
  const auto* const row = std::find_if(std::begin(kSets), std::end(kSets),
                                       [keyType](const SetRow& each) { return each.keyType == keyType; });
  return row == std::end(kSets) ? nullptr : row->name;
}

const char* PropertyName(_LocalTag tag) {
  const char* const name = STMetadataSets::NameForTag(tag);
  if (name != nullptr) return name;
  const PropertyRow* const row = RowOf(tag);
  return row == nullptr ? nullptr : row->name;
}

OxSharedPtr<OxObject> PropertyValue(STMetadataSets& set, _LocalTag tag) {
  OxSharedPtr<OxObject> value = set.ValueForTag(tag);
  const PropertyRow* const row = RowOf(tag);
  return value || row == nullptr ? value : ValueOf(set, *row);
}

bool isReference(_LocalTag tag) {
  return std::find(std::begin(kReferences), std::end(kReferences), tag) != std::end(kReferences);
}
