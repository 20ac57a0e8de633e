#include "metadata/STMetadataSets.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include "foundation/OxAutoLock.h"
#include "foundation/UUIDDefine.h"

namespace {

constexpr auto kNoValueType = static_cast<_MDValueType>(0);
constexpr unsigned long long kArrayHeaderSize = 4 + 4;
constexpr unsigned int kPixelLayoutSize = 16;

// How a value is read: which accessor, and for Reading::Value the type and the length that the item must have.
enum class Reading { Value, UUID, UUIDArray, UMID, String, Enum, EnumArray, SInt32Array, PixelLayout };

struct ValueReading {
  Reading reading;
  _MDValueType type;
  unsigned int size;
};

struct TagRow {
  unsigned short tag;
  const char* property;
  ValueReading reading;
};

// The tag dictionary (SMPTE ST 377-1; ST 382 for 3D10 and 3D11), in ascending order. A tag is read alike in whatever
// set it stands.
constexpr TagRow kTags[] = {
    // InterchangeObject
    {0x0102, "GenerationUID", {Reading::UUID, kNoValueType, 0}},
    // StructuralComponent
    {0x0201, "DataDefinition", {Reading::UUID, kNoValueType, 0}},
    {0x0202, "Duration", {Reading::Value, MDValueType_Int64, 8}},
    // Sequence
    {0x1001, "StructuralComponents", {Reading::UUIDArray, kNoValueType, 0}},
    // SourceClip
    {0x1101, "SourcePackageID", {Reading::UMID, kNoValueType, 0}},
    {0x1102, "SourceTrackID", {Reading::Value, MDValueType_UInt32, 4}},
    {0x1201, "StartPosition", {Reading::Value, MDValueType_Int64, 8}},
    // TimecodeComponent
    {0x1501, "StartTimecode", {Reading::Value, MDValueType_Int64, 8}},
    {0x1502, "RoundedTimecodeBase", {Reading::Value, MDValueType_UInt16, 2}},
    {0x1503, "DropFrame", {Reading::Value, MDValueType_UInt8, 1}},
    // ContentStorage
    {0x1901, "Packages", {Reading::UUIDArray, kNoValueType, 0}},
    {0x1902, "EssenceContainerData", {Reading::UUIDArray, kNoValueType, 0}},
    // EssenceContainerData
    {0x2701, "LinkedPackageUID", {Reading::UMID, kNoValueType, 0}},
    // FileDescriptor
    {0x3001, "SampleRate", {Reading::Value, MDValueType_Rational, 8}},
    {0x3004, "EssenceContainer", {Reading::UUID, kNoValueType, 0}},
    {0x3006, "LinkedTrackID", {Reading::Value, MDValueType_UInt32, 4}},
    // GenericPictureEssenceDescriptor
    {0x3201, "PictureEssenceCoding", {Reading::UUID, kNoValueType, 0}},
    {0x3202, "StoredHeight", {Reading::Value, MDValueType_UInt32, 4}},
    {0x3203, "StoredWidth", {Reading::Value, MDValueType_UInt32, 4}},
    {0x3204, "SampledHeight", {Reading::Value, MDValueType_UInt32, 4}},
    {0x3205, "SampledWidth", {Reading::Value, MDValueType_UInt32, 4}},
    {0x3206, "SampledXOffset", {Reading::Value, MDValueType_Int32, 4}},
    {0x3207, "SampledYOffset", {Reading::Value, MDValueType_Int32, 4}},
    {0x3208, "DisplayHeight", {Reading::Value, MDValueType_UInt32, 4}},
    {0x3209, "DisplayWidth", {Reading::Value, MDValueType_UInt32, 4}},
    {0x320A, "DisplayXOffset", {Reading::Value, MDValueType_Int32, 4}},
    {0x320B, "DisplayYOffset", {Reading::Value, MDValueType_Int32, 4}},
    {0x320C, "FrameLayout", {Reading::Value, MDValueType_UInt8, 1}},
    {0x320D, "VideoLineMap", {Reading::SInt32Array, kNoValueType, 0}},
    {0x320E, "AspectRatio", {Reading::Value, MDValueType_Rational, 8}},
    {0x3210, "TransferCharacteristic", {Reading::UUID, kNoValueType, 0}},
    {0x3211, "ImageAlignmentOffset", {Reading::Value, MDValueType_UInt32, 4}},
    {0x3212, "FieldDominance", {Reading::Value, MDValueType_UInt8, 1}},
    {0x3213, "ImageStartOffset", {Reading::Value, MDValueType_Int32, 4}},
    {0x3214, "ImageEndOffset", {Reading::Value, MDValueType_UInt32, 4}},
    {0x3215, "SignalStandard", {Reading::Enum, kNoValueType, 0}},
    {0x3216, "StoredF2Offset", {Reading::Value, MDValueType_Int32, 4}},
    {0x3217, "DisplayF2Offset", {Reading::Value, MDValueType_UInt32, 4}},
    {0x3219, "ColorPrimaries", {Reading::UUID, kNoValueType, 0}},
    // CDCIEssenceDescriptor
    {0x3301, "ComponentDepth", {Reading::Value, MDValueType_UInt32, 4}},
    {0x3302, "HorizontalSubsampling", {Reading::Value, MDValueType_UInt32, 4}},
    {0x3303, "ColorSiting", {Reading::Value, MDValueType_UInt8, 1}},
    {0x3304, "BlackRefLevel", {Reading::Value, MDValueType_UInt32, 4}},
    {0x3305, "WhiteReflevel", {Reading::Value, MDValueType_UInt32, 4}},
    {0x3306, "ColorRange", {Reading::Value, MDValueType_UInt32, 4}},
    {0x3307, "PaddingBits", {Reading::Value, MDValueType_Int16, 2}},
    {0x3308, "VerticalSubsampling", {Reading::Value, MDValueType_UInt32, 4}},
    {0x330B, "ReversedByteOrder", {Reading::Value, MDValueType_UInt8, 1}},
    // RGBAEssenceDescriptor
    {0x3401, "PixelLayout", {Reading::PixelLayout, kNoValueType, 0}},
    {0x3405, "ScanningDirection", {Reading::Value, MDValueType_UInt8, 1}},
    {0x3406, "ComponentMaxRef", {Reading::Value, MDValueType_UInt32, 4}},
    {0x3407, "ComponentMinRef", {Reading::Value, MDValueType_UInt32, 4}},
    // Preface
    {0x3B02, "LastModifiedDate", {Reading::Value, MDValueType_Timestamp, 8}},
    {0x3B03, "ContentStorage", {Reading::UUID, kNoValueType, 0}},
    {0x3B05, "Version", {Reading::Value, MDValueType_UInt16, 2}},
    {0x3B06, "Identifications", {Reading::UUIDArray, kNoValueType, 0}},
    {0x3B09, "OperationalPattern", {Reading::UUID, kNoValueType, 0}},
    {0x3B0A, "EssenceContainers", {Reading::UUIDArray, kNoValueType, 0}},
    {0x3B0B, "DMSchemes", {Reading::UUIDArray, kNoValueType, 0}},
    // Identification
    {0x3C01, "CompanyName", {Reading::String, kNoValueType, 0}},
    {0x3C02, "ProductName", {Reading::String, kNoValueType, 0}},
    {0x3C04, "VersionString", {Reading::String, kNoValueType, 0}},
    {0x3C05, "ProductUID", {Reading::UUID, kNoValueType, 0}},
    {0x3C06, "ModificationDate", {Reading::Value, MDValueType_Timestamp, 8}},
    {0x3C09, "ThisGenerationUID", {Reading::UUID, kNoValueType, 0}},
    // InterchangeObject
    {0x3C0A, "InstanceUID", {Reading::UUID, kNoValueType, 0}},
    // GenericSoundEssenceDescriptor
    {0x3D01, "QuantizationBits", {Reading::Value, MDValueType_UInt32, 4}},
    {0x3D02, "Locked", {Reading::Value, MDValueType_UInt8, 1}},
    {0x3D03, "AudioSamplingRate", {Reading::Value, MDValueType_Rational, 8}},
    {0x3D04, "AudioRefLevel", {Reading::Value, MDValueType_Int8, 1}},
    {0x3D07, "ChannelCount", {Reading::Value, MDValueType_UInt32, 4}},
    // WaveAudioDescriptor
    {0x3D09, "AvgBps", {Reading::Value, MDValueType_UInt32, 4}},
    {0x3D0A, "BlockAlign", {Reading::Value, MDValueType_UInt16, 2}},
    // AES3AudioDescriptor
    {0x3D10, "ChannelStatusMode", {Reading::EnumArray, kNoValueType, 0}},
    {0x3D11, "FixedChannelStatusData", {Reading::EnumArray, kNoValueType, 0}},
    // MultipleDescriptor
    {0x3F01, "FileDescriptors", {Reading::UUIDArray, kNoValueType, 0}},
    // EssenceContainerData
    {0x3F06, "IndexSID", {Reading::Value, MDValueType_UInt32, 4}},
    {0x3F07, "BodySID", {Reading::Value, MDValueType_UInt32, 4}},
    // GenericPackage
    {0x4401, "PackageUID", {Reading::UMID, kNoValueType, 0}},
    {0x4403, "Tracks", {Reading::UUIDArray, kNoValueType, 0}},
    {0x4404, "PackageModifiedDate", {Reading::Value, MDValueType_Timestamp, 8}},
    {0x4405, "PackageCreationDate", {Reading::Value, MDValueType_Timestamp, 8}},
    // SourcePackage
    {0x4701, "Descriptor", {Reading::UUID, kNoValueType, 0}},
    // GenericTrack
    {0x4801, "TrackID", {Reading::Value, MDValueType_UInt32, 4}},
    {0x4803, "Sequence", {Reading::UUID, kNoValueType, 0}},
    {0x4804, "TrackNumber", {Reading::Value, MDValueType_UInt32, 4}},
    // Track
    {0x4B01, "EditRate", {Reading::Value, MDValueType_Rational, 8}},
    {0x4B02, "Origin", {Reading::Value, MDValueType_Int64, 8}},
    // Tags of the range that is assigned per file; the cameras always use these two
    {0x8007, "VideoBitRate", {Reading::Value, MDValueType_UInt32, 4}},
    {0x8080, "SubDescriptors", {Reading::UUIDArray, kNoValueType, 0}},
};

constexpr bool isAscending() {
  for (std::size_t i = 1; i < std::size(kTags); ++i) {
    if (kTags[i - 1].tag >= kTags[i].tag) return false;
  }
  return true;
}
static_assert(isAscending(), "found by binary search; a tag stands once");

const TagRow* FindTag(_LocalTag tag) {
  const TagRow* row =
      std::lower_bound(std::begin(kTags), std::end(kTags), tag,
                       [](const TagRow& candidate, _LocalTag wanted) { return candidate.tag < wanted; });
  return row != std::end(kTags) && row->tag == tag ? row : nullptr;
}

struct LabelRow {
  const OxSharedPtr<MxfUUID>* label;
  ValueReading reading;
};

// Properties whose tags are assigned per file.
constexpr LabelRow kLabels[] = {
    {&FBC_UL_MER_SingleSequence, {Reading::Value, MDValueType_UInt8, 1}},
    {&FBC_UL_MER_ConstantBframes, {Reading::Value, MDValueType_UInt8, 1}},
    {&FBC_UL_MER_CodedContentScanning, {Reading::Enum, kNoValueType, 0}},
    {&FBC_UL_MER_LowDelay, {Reading::Value, MDValueType_UInt8, 1}},
    {&FBC_UL_MER_ClosedGOP, {Reading::Value, MDValueType_UInt8, 1}},
    {&FBC_UL_MER_IdenticalGOPIndicator, {Reading::Value, MDValueType_UInt8, 1}},
    {&FBC_UL_MER_MaxGOP, {Reading::Value, MDValueType_UInt16, 2}},
    {&FBC_UL_MER_BPictureCount, {Reading::Value, MDValueType_UInt16, 2}},
    {&FBC_UL_MER_BitRate, {Reading::Value, MDValueType_UInt32, 4}},
    {&FBC_UL_MER_ProfileAndLevel, {Reading::Value, MDValueType_UInt8, 1}},
};

OxSharedPtr<OxObject> Read(STMetadataSets& set, _LocalTag tag, const ValueReading& how) {
  switch (how.reading) {
    case Reading::Value:
      return set.ValueForTagAndType(tag, how.type, how.size);
    case Reading::UUID:
      return set.UUIDForTag(tag);
    case Reading::UUIDArray:
      return set.UUIDArrayValueForTag(tag);
    case Reading::UMID:
      return set.UMIDForTag(tag);
    case Reading::String:
      return set.OxStringValueForTag(tag);
    case Reading::Enum:
      return set.EnumForTag(tag);
    case Reading::EnumArray:
      return set.EnumArrayForTag(tag);
    case Reading::SInt32Array:
      return set.SInt32ArrayForTag(tag);
    case Reading::PixelLayout:
      return set.PixelLayoutForTag(tag);
  }
  return {};
}

// The header of an array whose elements fill the rest of its item exactly.
struct ArrayHeader {
  unsigned int count = 0;
  unsigned int elementSize = 0;

  bool Read(ParseMetaData& reader, unsigned int itemLength) {
    return itemLength >= kArrayHeaderSize && reader.RestLength() >= itemLength && reader.GetUInt32(&count) &&
           reader.GetUInt32(&elementSize) &&
           static_cast<unsigned long long>(count) * elementSize == itemLength - kArrayHeaderSize;
  }
};

// Reads the header of an array of 16-byte items; the number of items that ParseMetaData::GetUUIDArray would give.
unsigned int ReadUUIDCount(ParseMetaData& reader) {
  unsigned int count = 0;
  unsigned int itemSize = 0;
  if (!reader.GetUInt32(&count) || !reader.GetUInt32(&itemSize) || itemSize != MxfUUID::kSize) return 0;
  return static_cast<unsigned int>(std::min<unsigned long long>(count, reader.RestLength() / MxfUUID::kSize));
}

}  // namespace

STMetadataSets::STMetadataSets() = default;

STMetadataSets::STMetadataSets(OxSharedPtr<KLVPacket> packet) : LocalSets(packet) {}

STMetadataSets::~STMetadataSets() = default;

OxSharedPtr<OxObject> STMetadataSets::ValueForTag(_LocalTag tag) {
  const TagRow* row = FindTag(tag);
  return row != nullptr ? Read(*this, tag, row->reading) : OxSharedPtr<OxObject>();
}

const char* STMetadataSets::NameForTag(_LocalTag tag) {
  const TagRow* row = FindTag(tag);
  return row != nullptr ? row->property : nullptr;
}

OxSharedPtr<MDValue> STMetadataSets::ValueForTagAndType(_LocalTag tag, _MDValueType type, unsigned int size) {
  const LocalSetTagData* item = FindItem(tag);
  if (item == nullptr || item->length != size) return {};
  std::vector<unsigned char> bytes(size);
  // A reader of its own: this accessor takes no lock, and others may be moving the shared reader.
  ParseMetaData reader(Value());
  if (!reader.SetOffset(item->offset, kOxStreamSeekFromStart) || !reader.GetBytes(bytes.data(), size)) return {};
  return OxSharedPtr<MDValue>(new MDValue(bytes.data(), size, type));
}

OxSharedPtr<MxfUUID> STMetadataSets::UUIDForTag(_LocalTag tag) {
  const OxAutoLock guard(this);
  const OxSharedPtr<ParseMetaData> reader = GetParserForTag(tag);
  return reader && LengthForTag(tag) == MxfUUID::kSize ? reader->GetUUID() : OxSharedPtr<MxfUUID>();
}

OxSharedPtr<OxMutableArray> STMetadataSets::UUIDArrayValueForTag(_LocalTag tag) {
  const OxAutoLock guard(this);
  const OxSharedPtr<ParseMetaData> reader = GetParserForTag(tag);
  return reader ? reader->GetUUIDArray() : OxSharedPtr<OxMutableArray>();
}

unsigned int STMetadataSets::UUIDCountForTag(_LocalTag tag) {
  const OxAutoLock guard(this);
  const OxSharedPtr<ParseMetaData> reader = GetParserForTag(tag);
  return reader ? ReadUUIDCount(*reader) : 0;
}

OxSharedPtr<MxfUUID> STMetadataSets::UUIDAtIndexForTag(_LocalTag tag, unsigned int index) {
  const OxAutoLock guard(this);
  const OxSharedPtr<ParseMetaData> reader = GetParserForTag(tag);
  if (!reader || index >= ReadUUIDCount(*reader)) return {};
  const bool isThere = reader->SetOffset(static_cast<long long>(index) * MxfUUID::kSize, kOxStreamSeekFromCurrent);
  return isThere ? reader->GetUUID() : OxSharedPtr<MxfUUID>();
}

OxSharedPtr<OxStringMac> STMetadataSets::OxStringValueForTag(_LocalTag tag) {
  const OxAutoLock guard(this);
  const OxSharedPtr<ParseMetaData> reader = GetParserForTag(tag);
  return reader ? reader->GetUTF16String(LengthForTag(tag)) : OxSharedPtr<OxStringMac>();
}

OxSharedPtr<UMID> STMetadataSets::UMIDForTag(_LocalTag tag) {
  const OxAutoLock guard(this);
  const OxSharedPtr<ParseMetaData> reader = GetParserForTag(tag);
  const unsigned int length = LengthForTag(tag);
  const bool isUMID = length == UMID::kBasicSize || length == UMID::kExtendedSize;
  return reader && isUMID ? reader->GetUMID() : OxSharedPtr<UMID>();
}

OxSharedPtr<OxVector<unsigned char>> STMetadataSets::EnumForTag(_LocalTag tag) {
  const OxAutoLock guard(this);
  const OxSharedPtr<ParseMetaData> reader = GetParserForTag(tag);
  return reader ? reader->GetEnum(LengthForTag(tag)) : OxSharedPtr<OxVector<unsigned char>>();
}

OxSharedPtr<OxVector<int>> STMetadataSets::SInt32ArrayForTag(_LocalTag tag) {
  const OxAutoLock guard(this);
  const OxSharedPtr<ParseMetaData> reader = GetParserForTag(tag);
  ArrayHeader header;
  if (!reader || !header.Read(*reader, LengthForTag(tag))) return {};
  OxSharedPtr<OxVector<int>> elements = CreateOxVectorSInt32();
  for (unsigned int i = 0; i < header.count; ++i) {
    int element = 0;
    if (!reader->GetInt32(&element)) return {};
    elements->push_back(element);
  }
  return elements;
}

OxSharedPtr<OxVector<tagRGBALayout>> STMetadataSets::PixelLayoutForTag(_LocalTag tag) {
  const LocalSetTagData* item = FindItem(tag);
  if (item == nullptr) return {};
  OxSharedPtr<OxVector<tagRGBALayout>> layout(new OxVector<tagRGBALayout>);
  if (item->length != kPixelLayoutSize) return layout;
  ParseMetaData reader(Value());  // its own, for this accessor takes no lock
  if (!reader.SetOffset(item->offset, kOxStreamSeekFromStart)) return layout;
  for (unsigned int i = 0; i < kPixelLayoutSize / 2; ++i) {
    tagRGBALayout component{};
    if (!reader.GetUInt8(&component.code) || !reader.GetUInt8(&component.depth)) break;
    layout->push_back(component);
  }
  return layout;
}

OxSharedPtr<OxMutableArray> STMetadataSets::EnumArrayForTag(_LocalTag tag) {
  const OxAutoLock guard(this);
  const OxSharedPtr<ParseMetaData> reader = GetParserForTag(tag);
  ArrayHeader header;
  if (!reader || !header.Read(*reader, LengthForTag(tag))) return {};
  OxSharedPtr<OxMutableArray> elements(new OxMutableArray);
  if (header.elementSize == 0) return elements;
  for (unsigned int i = 0; i < header.count; ++i) elements->AddObject(reader->GetEnum(header.elementSize));
  return elements;
}

OxSharedPtr<OxObject> STMetadataSets::ValueForUUID(OxSharedPtr<MxfUUID> label, OxSharedPtr<PrimerPack> primer) {
  unsigned short tag = 0;
  if (!label || !primer || !primer->UIDToTag(&tag, label.get())) return {};
  for (const LabelRow& row : kLabels) {
    if (*row.label && **row.label == *label) return Read(*this, tag, row.reading);
  }
  return {};
}
