#include "klv/LocalSets.h"

#include <algorithm>
#include <new>
#include <string>

#include "foundation/FormatText.h"
#include "foundation/OxAutoLock.h"

namespace {

constexpr unsigned int kCodingByte = 5;  // of the key

// No camera writes a set as large as this: a length that is a mistake. Such a value is walked where it lies before it
// is copied.
constexpr unsigned long long kSuspiciousSize = 1 << 20;

constexpr unsigned int kTagOIDBER = 1;
constexpr unsigned int kTagOneByte = 2;
constexpr unsigned int kTagTwoBytes = 3;
constexpr unsigned int kTagFourBytes = 4;

constexpr unsigned int kLengthBER = 1;
constexpr unsigned int kLengthOneByte = 2;
constexpr unsigned int kLengthTwoBytes = 3;
constexpr unsigned int kLengthFourBytes = 4;

// Reads a number of the width of Stored into 32 bits.
template <class Stored>
bool GetAs32(ParseMetaData& reader, bool (ParseMetaData::*read)(Stored*), unsigned int* value) {
  Stored stored = 0;
  if (!(reader.*read)(&stored)) return false;
  *value = stored;
  return true;
}

}  // namespace

LocalSets::LocalSets() { init(); }

LocalSets::LocalSets(OxSharedPtr<KLVPacket> packet) : KLVPacket(packet) { init(); }

LocalSets::~LocalSets() = default;

void LocalSets::init() {
  m_reader = OxSharedPtr<ParseMetaData>(new (std::nothrow) ParseMetaData);
  if (!m_reader) throw static_cast<const char*>("LocalSets Init Error");
  m_value.Reset();
  m_items.clear();
}

bool LocalSets::isImportable() { return key().GetKeyKind() == kKeyLocalSet; }

unsigned int LocalSets::Import(OxSharedPtr<OxStream> stream, long long offset) {
  if (!stream) return kStatusNoInput;
  Empty();
  _OxRange range = {static_cast<unsigned long long>(offset), Length()};
  const bool isInside = range.location <= stream->Length() && range.length <= stream->Length() - range.location;
  if (isInside && range.length > kSuspiciousSize && !isWellFormed(stream, offset)) return kStatusUnreadable;
  m_value = OxMemoryStream::CreateMemoryStreamPtr(stream, range);
  if (!m_value) return kStatusNoCopy;
  m_reader->SetStream(m_value);
  const unsigned int status = Parse();
  if (!isLowHalfOK(status)) Empty();
  return status;
}

void LocalSets::Empty() {
  m_reader->ResetStream();
  m_value.Reset();
  m_items.clear();
}

unsigned int LocalSets::Parse() {
  m_items.clear();
  m_tagType = TagType();
  m_lengthType = LengthType();
  if (m_value && m_value->Length() > 0 && m_reader->SetOffset(0, kOxStreamSeekFromStart) &&
      ReadItems(*m_reader, m_value->Length())) {
    return kStatusOK;
  }
  m_items.clear();
  m_reader->ResetStream();
  return kStatusUnreadable;
}

bool LocalSets::isWellFormed(const OxSharedPtr<OxStream>& stream, long long offset) {
  m_tagType = TagType();
  m_lengthType = LengthType();
  ParseMetaData reader(stream);
  const bool isWalked = reader.SetOffset(offset, kOxStreamSeekFromStart) && ReadItems(reader, Length());
  m_items.clear();
  return isWalked;
}

// Walks the items of the `size` bytes from the reader's position on.
bool LocalSets::ReadItems(ParseMetaData& reader, unsigned long long size) {
  constexpr std::size_t kFirstCheck = 64;
  const long long start = reader.offset();
  const long long end = start + static_cast<long long>(size);
  std::size_t nextCheck = kFirstCheck;
  while (reader.offset() < end) {
    Item item{};
    if (!ReadTag(reader, &item.tag) || !ReadLength(reader, &item.data.length)) return false;
    if (item.data.length > end - reader.offset()) return false;
    item.data.offset = static_cast<unsigned int>(reader.offset() - start);
    m_items.push_back(item);
    if (!reader.SetOffset(item.data.length, kOxStreamSeekFromCurrent)) return false;
    // Now and then, so that a long run of one tag ends early.
    if (m_items.size() < nextCheck) continue;
    if (!SortItems()) return false;
    nextCheck *= 2;
  }
  return SortItems();
}

// False when a tag occurs twice: such a set is refused whole rather than read by its first or last occurrence.
bool LocalSets::SortItems() {
  std::sort(m_items.begin(), m_items.end(), [](const Item& a, const Item& b) { return a.tag < b.tag; });
  return std::adjacent_find(m_items.begin(), m_items.end(),
                            [](const Item& a, const Item& b) { return a.tag == b.tag; }) == m_items.end();
}

unsigned int LocalSets::TagType() const {
  constexpr unsigned int kTypes[] = {kTagOneByte, kTagOIDBER, kTagTwoBytes, kTagFourBytes};
  return kTypes[key().ValueAtIndex(kCodingByte) >> 3 & 0x03];
}

unsigned int LocalSets::LengthType() const {
  constexpr unsigned int kTypes[] = {kLengthBER, kLengthOneByte, kLengthTwoBytes, kLengthFourBytes};
  return kTypes[key().ValueAtIndex(kCodingByte) >> 5 & 0x03];
}

bool LocalSets::ReadTag(unsigned int* tag) {
  if (tag == nullptr || !m_value) return false;
  *tag = 0;
  return ReadTag(*m_reader, tag);
}

bool LocalSets::ReadLength(unsigned int* length) {
  if (length == nullptr || !m_value) return false;
  *length = 0;
  return ReadLength(*m_reader, length);
}

bool LocalSets::ReadTag(ParseMetaData& reader, unsigned int* tag) const {
  switch (m_tagType) {
    case kTagOIDBER:
      return reader.GetOIDBER(tag);
    case kTagOneByte:
      return GetAs32(reader, &ParseMetaData::GetUInt8, tag);
    case kTagTwoBytes:
      return GetAs32(reader, &ParseMetaData::GetUInt16, tag);
    case kTagFourBytes:
      return reader.GetUInt32(tag);
    default:
      return false;
  }
}

bool LocalSets::ReadLength(ParseMetaData& reader, unsigned int* length) const {
  switch (m_lengthType) {
    case kLengthBER:
      return reader.GetBER(length);
    case kLengthOneByte:
      return GetAs32(reader, &ParseMetaData::GetUInt8, length);
    case kLengthTwoBytes:
      return GetAs32(reader, &ParseMetaData::GetUInt16, length);
    case kLengthFourBytes:
      return reader.GetUInt32(length);
    default:
      return false;
  }
}

OxSharedPtr<ParseMetaData> LocalSets::GetParserForTag(_LocalTag tag) {
  const LocalSetTagData* item = FindItem(tag);
  if (item == nullptr || !m_reader->SetOffset(item->offset, kOxStreamSeekFromStart)) return {};
  return m_reader;
}

unsigned int LocalSets::LengthForTag(_LocalTag tag) const {
  const LocalSetTagData* item = FindItem(tag);
  return item != nullptr ? item->length : 0;
}

const LocalSetTagData* LocalSets::FindItem(_LocalTag tag) const {
  const auto item = std::lower_bound(m_items.begin(), m_items.end(), tag,
                                     [](const Item& candidate, _LocalTag wanted) { return candidate.tag < wanted; });
  return item != m_items.end() && item->tag == tag ? &item->data : nullptr;
}

void LocalSets::Lock() { m_reader->Lock(); }

void LocalSets::Unlock() { m_reader->Unlock(); }

OxSharedPtr<OxStringMac> LocalSets::Description() {
  const OxAutoLock guard(m_reader);
  std::string text = "{\n";
  for (const Item& item : m_items) {
    text += FormatText("\t%08x = ", item.tag);
    const unsigned char* bytes = m_value->Bytes() + item.data.offset;
    for (unsigned int i = 0; i < item.data.length; ++i) {
      text += FormatText(i % 4 == 3 ? "%02x " : "%02x", bytes[i]);
    }
    text += "\n";
  }
  return CreateOxString(text + "}");
}
