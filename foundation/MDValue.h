#ifndef CLIPPARSER_FOUNDATION_MDVALUE_H
#define CLIPPARSER_FOUNDATION_MDVALUE_H

#include "foundation/Export.h"
#include "foundation/OxMemoryStream.h"
#include "foundation/OxObject.h"
#include "foundation/OxSharedPtr.h"
#include "foundation/OxStringMac.h"
#include "foundation/ParseMetaData.h"

// What a metadata value is. Any other number is accepted, converts to nothing and prints the base description.
enum _MDValueType : unsigned int {
  MDValueType_UInt8 = 1,
  MDValueType_UInt16 = 2,
  MDValueType_UInt32 = 3,
  MDValueType_UInt64 = 4,
  MDValueType_Int8 = 5,
  MDValueType_Int16 = 6,
  MDValueType_Int32 = 7,
  MDValueType_Int64 = 8,
  MDValueType_Timestamp = 9,
  MDValueType_Rational = 10,
};

// The typed value of a scalar metadata item: its big-endian bytes, of which it holds a copy, and what they mean.
//
// Each conversion wants exactly its own type; there is no widening or narrowing. It throws "MDValue Cast Error"
// (const char*) when the type is another one or the bytes are too few, and can be repeated.
// Threads: a conversion moves the value's reader; one value must not be converted from two threads at once.
class CLIPPARSER_EXPORT MDValue : public OxObject {
 public:
  // Copies `size` bytes. Throws "MDValue Init Error" (const char*) when `bytes` is null. Whether the size fits the
  // type shows only when the value is converted.
  MDValue(const unsigned char* bytes, unsigned int size, _MDValueType type);
  ~MDValue() override;
  MDValue(const MDValue&) = delete;
  using OxObject::operator=;
  MDValue& operator=(const MDValue&) = delete;

  // The type that the bytes were said to have.
  [[nodiscard]] _MDValueType ValueType() const { return m_type; }

  // The value, if it is of just this type. Throws "MDValue Cast Error" otherwise.
  operator unsigned char();
  operator unsigned short();
  operator unsigned int();
  operator unsigned long long();
  operator signed char();
  operator short();
  operator int();
  operator long long();
  operator _Timestamp();
  operator _Rational();

  // Integers in decimal, a rational as 30000/1001, a timestamp as 2019/3/7 12:5:9 500 (milliseconds last). Throws as
  // the conversions do when the bytes are too few.
  OxSharedPtr<OxStringMac> Description() override;

 private:
  template <class Value>
  Value Convert(_MDValueType type, bool (ParseMetaData::*read)(Value*));

  OxSharedPtr<OxMemoryStream> m_stream;
  _MDValueType m_type;
  ParseMetaData m_reader;
};

// Takes a T out of an object that should be an MDValue. False, with `value` untouched, when the object is empty or
// something else, or the conversion throws.
template <class T>
[[nodiscard]] bool GetValue(const OxSharedPtr<OxObject>& object, T& value) {
  const OxSharedPtr<MDValue> boxed = object;
  if (!boxed) return false;
  try {
    value = boxed->operator T();
    return true;
  } catch (const char*) {
    return false;
  }
}

#endif  // CLIPPARSER_FOUNDATION_MDVALUE_H
