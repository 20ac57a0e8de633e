#include "klv/StreamFileSequenceInfo.h"

namespace {

constexpr unsigned int kStartPositionTag = 0x1201;
constexpr unsigned int kStartTimecodeTag = 0x1501;
constexpr unsigned int kInstanceUIDTag = 0x3C0A;
constexpr unsigned int kPackageUIDTag = 0x4401;

constexpr unsigned long long kItemHeadSize = 2 + 2;

bool ReadNumber(ParseMetaData& reader, OxSharedPtr<OxNumber>& number) {
  long long value = 0;
  if (!reader.GetInt64(&value)) return false;
  number = OxNumber::Create<long long>(value);
  return true;
}

}  // namespace

StreamFileSequenceInfo::StreamFileSequenceInfo() = default;

StreamFileSequenceInfo::StreamFileSequenceInfo(OxSharedPtr<KLVPacket> packet) : KLVPacket(packet) {}

StreamFileSequenceInfo::~StreamFileSequenceInfo() = default;

void StreamFileSequenceInfo::init() {}

bool StreamFileSequenceInfo::isImportable() { return PacketType() == kKeyStreamFileSequenceInfo; }

unsigned int StreamFileSequenceInfo::Import(OxSharedPtr<OxStream> stream, long long offset) {
  if (!stream) return kStatusUnreadable;
  ParseMetaData reader(stream);
  if (!reader.SetOffset(offset, kOxStreamSeekFromStart)) return kStatusUnreadable;
  unsigned long long remaining = Length();
  while (remaining >= kItemHeadSize) {
    unsigned short tag = 0;
    unsigned short length = 0;
    if (!reader.GetUInt16(&tag) || !reader.GetUInt16(&length)) break;
    remaining -= kItemHeadSize;
    if (length > remaining || !ReadItem(reader, tag, length)) break;
    remaining -= length;
  }
  return kStatusOK;
}

bool StreamFileSequenceInfo::ReadItem(ParseMetaData& reader, unsigned int tag, unsigned int length) {
  switch (tag) {
    case kStartPositionTag:
      return length == sizeof(long long) && ReadNumber(reader, m_startPosition);
    case kStartTimecodeTag:
      return length == sizeof(long long) && ReadNumber(reader, m_startTimecode);
    case kInstanceUIDTag:
      if (length != MxfUUID::kSize) return false;
      m_instanceUID = reader.GetUUID();
      return static_cast<bool>(m_instanceUID);
    case kPackageUIDTag:
      if (length != UMID::kBasicSize) return false;
      m_packageUID = reader.GetUMID();
      return static_cast<bool>(m_packageUID);
    default:
      return reader.SetOffset(length, kOxStreamSeekFromCurrent);
  }
}
