#include "foundation/MDValue.h"

#include <string>

#include "foundation/FormatText.h"

namespace {

std::string TimestampText(const _Timestamp& t) {
  return FormatText("%d/%u/%u %u:%u:%u %u", t.year, t.month, t.day, t.hour, t.minute, t.second,
                    t.quarterMilliseconds * 4u);
}

}  // namespace

MDValue::MDValue(const unsigned char* bytes, unsigned int size, _MDValueType type) : m_type(type) {
  if (bytes == nullptr) throw static_cast<const char*>("MDValue Init Error");
  m_stream = OxSharedPtr<OxMemoryStream>(new OxMemoryStream(bytes, size, false));
  m_reader.SetStream(m_stream);
}

MDValue::~MDValue() = default;

template <class Value>
Value MDValue::Convert(_MDValueType type, bool (ParseMetaData::*read)(Value*)) {
  Value value{};
  if (m_type != type || !m_reader.SetOffset(0, kOxStreamSeekFromStart) || !(m_reader.*read)(&value)) {
    throw static_cast<const char*>("MDValue Cast Error");
  }
  return value;
}

MDValue::operator unsigned char() { return Convert(MDValueType_UInt8, &ParseMetaData::GetUInt8); }

MDValue::operator unsigned short() { return Convert(MDValueType_UInt16, &ParseMetaData::GetUInt16); }

MDValue::operator unsigned int() { return Convert(MDValueType_UInt32, &ParseMetaData::GetUInt32); }

MDValue::operator unsigned long long() { return Convert(MDValueType_UInt64, &ParseMetaData::GetUInt64); }

MDValue::operator signed char() { return Convert(MDValueType_Int8, &ParseMetaData::GetInt8); }

MDValue::operator short() { return Convert(MDValueType_Int16, &ParseMetaData::GetInt16); }

MDValue::operator int() { return Convert(MDValueType_Int32, &ParseMetaData::GetInt32); }

MDValue::operator long long() { return Convert(MDValueType_Int64, &ParseMetaData::GetInt64); }

MDValue::operator _Timestamp() { return Convert(MDValueType_Timestamp, &ParseMetaData::GetTimestamp); }

MDValue::operator _Rational() { return Convert(MDValueType_Rational, &ParseMetaData::GetRational); }

OxSharedPtr<OxStringMac> MDValue::Description() {
  switch (m_type) {
    case MDValueType_UInt8:
      return CreateOxString(FormatText("%u", static_cast<unsigned char>(*this)));
    case MDValueType_UInt16:
      return CreateOxString(FormatText("%u", static_cast<unsigned short>(*this)));
    case MDValueType_UInt32:
      return CreateOxString(FormatText("%u", static_cast<unsigned int>(*this)));
    case MDValueType_UInt64:
      return CreateOxString(FormatText("%llu", static_cast<unsigned long long>(*this)));
    case MDValueType_Int8:
      return CreateOxString(FormatText("%d", static_cast<signed char>(*this)));
    case MDValueType_Int16:
      return CreateOxString(FormatText("%d", static_cast<short>(*this)));
    case MDValueType_Int32:
      return CreateOxString(FormatText("%d", static_cast<int>(*this)));
    case MDValueType_Int64:
      return CreateOxString(FormatText("%lld", static_cast<long long>(*this)));
    case MDValueType_Timestamp:
      return CreateOxString(TimestampText(*this));
    case MDValueType_Rational: {
      const _Rational value = *this;
      return CreateOxString(FormatText("%d/%d", value.numerator, value.denominator));
    }
  }
  return OxObject::Description();
}
