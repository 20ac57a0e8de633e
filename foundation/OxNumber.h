#ifndef CLIPPARSER_FOUNDATION_OXNUMBER_H
#define CLIPPARSER_FOUNDATION_OXNUMBER_H

#include <string>

#include "foundation/Export.h"
#include "foundation/OxObject.h"
#include "foundation/OxSharedPtr.h"
#include "foundation/OxStringMac.h"

// A boxed number. Each accessor converts the stored value to its own type as C++ does: narrowing keeps the low-order
// bits, signed targets reinterpret them. Never changes once made.
class CLIPPARSER_EXPORT OxNumber : public OxObject {
 public:
  OxNumber();
  ~OxNumber() override;

  // Boxes a number, which keeps its type.
  template <class T>
  static OxSharedPtr<OxNumber> Create(T value);

  // The number, converted; a bool says whether it is not 0.
  virtual bool boolValue() = 0;
  virtual unsigned char UInt8Value() = 0;
  virtual unsigned short UInt16Value() = 0;
  virtual unsigned int UInt32Value() = 0;
  virtual unsigned long long UInt64Value() = 0;
  virtual signed char SInt8Value() = 0;
  virtual short SInt16Value() = 0;
  virtual int SInt32Value() = 0;
  virtual long long SInt64Value() = 0;
  virtual float floatValue() = 0;
  virtual double doubleValue() = 0;
};

// The number in decimal; a byte prints as digits, not as a character.
template <class T>
OxSharedPtr<OxStringMac> GetValueString(T value) {
  return CreateOxString(std::to_string(+value));
}

// The box of a number of type T. OxNumber::Create makes it.
template <class T>
class CLIPPARSER_EXPORT OxNumberConcrete : public OxNumber {
 public:
  // Boxes `value`.
  explicit OxNumberConcrete(T value) : m_value(value) {}
  ~OxNumberConcrete() override = default;

  OxSharedPtr<OxStringMac> Description() override { return GetValueString(m_value); }

  bool boolValue() override { return m_value != 0; }
  unsigned char UInt8Value() override { return static_cast<unsigned char>(m_value); }
  unsigned short UInt16Value() override { return static_cast<unsigned short>(m_value); }
  unsigned int UInt32Value() override { return static_cast<unsigned int>(m_value); }
  unsigned long long UInt64Value() override { return static_cast<unsigned long long>(m_value); }
  signed char SInt8Value() override { return static_cast<signed char>(m_value); }
  short SInt16Value() override { return static_cast<short>(m_value); }
  int SInt32Value() override { return static_cast<int>(m_value); }
  long long SInt64Value() override { return static_cast<long long>(m_value); }
  float floatValue() override { return static_cast<float>(m_value); }
  double doubleValue() override { return static_cast<double>(m_value); }

 private:
  T m_value;
};

template <class T>
OxSharedPtr<OxNumber> OxNumber::Create(T value) {
  return OxSharedPtr<OxNumber>(new OxNumberConcrete<T>(value));
}

#endif  // CLIPPARSER_FOUNDATION_OXNUMBER_H
