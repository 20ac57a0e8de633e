#include "foundation/ParseMetaData.h"

#include <algorithm>
#include <new>
#include <utility>
#include <vector>

#include "foundation/BigEndian.h"

// The packet operations are defined beside KLVPacket, in the layer above.

namespace {

constexpr unsigned long long kTimestampSize = 2 + 1 + 1 + 1 + 1 + 1 + 1;
constexpr unsigned long long kRationalSize = 4 + 4;
constexpr std::size_t kUMIDLengthByte = 12;
constexpr unsigned char kExtendedUMIDLength = 0x33;

}  // namespace

ParseMetaData::ParseMetaData() = default;

ParseMetaData::ParseMetaData(OxSharedPtr<OxStream> stream) : m_stream(std::move(stream)) {}

ParseMetaData::~ParseMetaData() = default;

void ParseMetaData::SetStream(OxSharedPtr<OxStream> stream) {
  m_stream = std::move(stream);
  m_position = 0;
}

void ParseMetaData::ResetStream() { SetStream({}); }

unsigned long long ParseMetaData::RestLength() const {
  if (!m_stream || m_position > m_stream->Length()) return 0;
  return m_stream->Length() - m_position;
}

bool ParseMetaData::SetOffset(long long offset, int origin) {
  if (!m_stream) return false;
  const auto length = static_cast<long long>(m_stream->Length());
  long long target = offset;
  switch (origin) {
    case kOxStreamSeekFromStart:
      if (offset > length) return false;
      break;
    case kOxStreamSeekFromCurrent:
      if (__builtin_add_overflow(static_cast<long long>(m_position), offset, &target)) return false;
      if (target < 0 || target > length) return false;
      break;
    case kOxStreamSeekFromEnd:
      if (offset < -length || __builtin_add_overflow(length, offset, &target)) return false;
      break;
    default:
      return false;
  }
  m_position = static_cast<unsigned long long>(target);
  return true;
}

bool ParseMetaData::PeekBytes(unsigned char* buffer, unsigned long long count) const {
  if (!m_stream) return false;
  const long long read = m_stream->Read(buffer, count, static_cast<long long>(m_position), kOxStreamSeekFromStart);
  return read >= 0 && static_cast<unsigned long long>(read) == count;
}

template <class Unsigned>
bool ParseMetaData::GetUnsigned(Unsigned* value) {
  if (value == nullptr) return false;
  *value = 0;
  unsigned char bytes[sizeof(Unsigned)];
  if (!PeekBytes(bytes, sizeof(bytes))) return false;
  *value = LoadBigEndian<Unsigned>(bytes);
  m_position += sizeof(bytes);
  return true;
}

bool ParseMetaData::GetUInt8(unsigned char* value) { return GetUnsigned(value); }

bool ParseMetaData::GetUInt16(unsigned short* value) { return GetUnsigned(value); }

bool ParseMetaData::GetUInt32(unsigned int* value) { return GetUnsigned(value); }

bool ParseMetaData::GetUInt64(unsigned long long* value) { return GetUnsigned(value); }

// The signed reads: the same bits, read as two's complement.
bool ParseMetaData::GetInt8(signed char* value) { return GetUnsigned(reinterpret_cast<unsigned char*>(value)); }

bool ParseMetaData::GetInt16(short* value) { return GetUnsigned(reinterpret_cast<unsigned short*>(value)); }

bool ParseMetaData::GetInt32(int* value) { return GetUnsigned(reinterpret_cast<unsigned int*>(value)); }

bool ParseMetaData::GetInt64(long long* value) { return GetUnsigned(reinterpret_cast<unsigned long long*>(value)); }

bool ParseMetaData::GetUUID(MxfUUID* value) {
  unsigned char bytes[MxfUUID::kSize];
  if (value == nullptr || !GetBytes(bytes, sizeof(bytes))) return false;
  value->SetKey(bytes);
  return true;
}

bool ParseMetaData::GetBytes(unsigned char* buffer, unsigned int count) {
  if (buffer == nullptr || !PeekBytes(buffer, count)) return false;
  m_position += count;
  return true;
}

bool ParseMetaData::GetBER(unsigned int* value) {
  if (value == nullptr) return false;
  *value = 0;
  const unsigned long long start = m_position;
  unsigned char first = 0;
  if (!GetUInt8(&first)) return false;
  if (first < 0x80) {
    *value = first;
    return true;
  }
  const unsigned int count = first & 0x7Fu;
  unsigned char bytes[4];
  if (count < 1 || count > sizeof(bytes) || !GetBytes(bytes, count)) {
    m_position = start;
    return false;
  }
  *value = LoadBigEndian<unsigned int>(bytes, count);
  return true;
}

bool ParseMetaData::GetOIDBER(unsigned int* value) {
  if (value == nullptr) return false;
  *value = 0;
  const unsigned long long start = m_position;
  unsigned int sum = 0;
  for (int i = 0; i < 4; ++i) {
    unsigned char byte = 0;
    if (!GetUInt8(&byte)) break;
    if (byte < 0x80) {
      *value = sum + byte;
      return true;
    }
    sum = (sum + (byte & 0x7Fu)) << 7;
  }
  m_position = start;
  return false;
}

bool ParseMetaData::GetTimestamp(_Timestamp* value) {
  if (value == nullptr || RestLength() < kTimestampSize) return false;
  const unsigned long long start = m_position;
  const bool isRead = GetInt16(&value->year) &&                                //
                      GetUInt8(&value->month) &&                               //
                      GetUInt8(&value->day) &&                                 //
                      GetUInt8(&value->hour) &&                                //
                      GetUInt8(&value->minute) && GetUInt8(&value->second) &&  //
                      GetUInt8(&value->quarterMilliseconds);
  if (!isRead) m_position = start;
  return isRead;
}

bool ParseMetaData::GetRational(_Rational* value) {
  if (value == nullptr || RestLength() < kRationalSize) return false;
  const unsigned long long start = m_position;
  const bool isRead = GetInt32(&value->numerator) && GetInt32(&value->denominator);
  if (!isRead) m_position = start;
  return isRead;
}

OxSharedPtr<MxfUUID> ParseMetaData::GetUUID() {
  unsigned char bytes[MxfUUID::kSize];
  if (!GetBytes(bytes, sizeof(bytes))) return {};
  return OxSharedPtr<MxfUUID>(new MxfUUID(bytes));
}

OxSharedPtr<UMID> ParseMetaData::GetUMID() {
  unsigned char bytes[UMID::kExtendedSize];
  if (!PeekBytes(bytes, UMID::kBasicSize)) return {};
  unsigned int size = UMID::kBasicSize;
  if (bytes[kUMIDLengthByte] == kExtendedUMIDLength) {
    if (!PeekBytes(bytes + UMID::kBasicSize, UMID::kBasicSize)) return {};
    size = UMID::kExtendedSize;
  }
  OxSharedPtr<UMID> umid(new UMID);
  if (umid->SetData(bytes, static_cast<int>(size)) != 0) return {};
  m_position += size;
  return umid;
}

OxSharedPtr<OxMutableArray> ParseMetaData::GetUUIDArray(unsigned long long mostItems) {
  unsigned char header[4 + 4];
  if (!GetBytes(header, sizeof(header))) return {};
  const auto count = LoadBigEndian<unsigned int>(header);
  const auto itemSize = LoadBigEndian<unsigned int>(header + 4);
  OxSharedPtr<OxMutableArray> array(new OxMutableArray);
  if (itemSize != MxfUUID::kSize) return array;
  const unsigned long long wanted = count > kSuspiciousCount ? std::min<unsigned long long>(count, mostItems) : count;
  for (unsigned long long i = 0; i < wanted; ++i) {
    const OxSharedPtr<MxfUUID> item = GetUUID();
    if (!item) break;  // the position no longer moves: no later item can be read either
    array->AddObject(item);
  }
  return array;
}

OxSharedPtr<OxVector<unsigned char>> ParseMetaData::GetEnum(unsigned long long count) {
  if (!m_stream || RestLength() < count) return {};
  try {
    OxSharedPtr<OxVector<unsigned char>> bytes = CreateOxVectorUInt8();
    bytes->resize(count);
    if (count > 0 && !PeekBytes(bytes->data(), count)) return {};
    m_position += count;
    return bytes;
  } catch (const std::bad_alloc&) {
    return {};
  }
}

OxSharedPtr<OxStringMac> ParseMetaData::GetUTF16String(unsigned int byteCount) {
  if (byteCount == 0 || byteCount % 2 != 0 || RestLength() < byteCount) return {};
  try {
    std::vector<char> bytes(byteCount);
    if (!GetBytes(reinterpret_cast<unsigned char*>(bytes.data()), byteCount)) return {};
    return OxSharedPtr<OxStringMac>(new OxStringMac(bytes.data(), byteCount, kOxStringCharCodeUTF16BE));
  } catch (const std::bad_alloc&) {
    return {};
  }
}

OxSharedPtr<OxMemoryStream> ParseMetaData::CopyMemoryStream(unsigned long long count) {
  if (!m_stream) return {};
  _OxRange range = {m_position, count};
  OxSharedPtr<OxMemoryStream> copy = OxMemoryStream::CreateMemoryStreamPtr(m_stream, range);
  if (copy) m_position += count;
  return copy;
}
