#include "foundation/UMID.h"

#include <algorithm>
#include <string>

#include "foundation/FormatText.h"
#include "foundation/Status.h"

namespace {

constexpr std::size_t kSerialArea = 27;
constexpr std::size_t kSerialAreaSize = 5;

}  // namespace

UMID::UMID() = default;

UMID::~UMID() = default;

unsigned int UMID::SetData(const unsigned char* bytes, int length) {
  if (bytes == nullptr || (length != kBasicSize && length != kExtendedSize)) return kStatusNoInput;
  m_length = static_cast<unsigned char>(length);
  std::copy_n(bytes, m_length, m_data.begin());
  return kStatusOK;
}

unsigned char UMID::ValueAtIndex(unsigned int index) const {
  if (index >= m_length) throw static_cast<const char*>("Index range error");
  return m_data[index];
}

bool UMID::isEqualToUMID(OxSharedPtr<UMID> other) const {
  return other && other->m_length == m_length &&
         std::equal(m_data.begin(), m_data.begin() + m_length, other->m_data.begin());
}

bool UMID::IsNotFillSerialArea() const {
  const auto area = m_data.begin() + kSerialArea;
  return std::all_of(area, area + kSerialAreaSize, [](unsigned char byte) { return byte == 0; });
}

void UMID::CorrectSerialArea(const unsigned char* serial) {
  if (serial != nullptr) std::copy_n(serial, kSerialAreaSize, m_data.begin() + kSerialArea);
}

OxSharedPtr<OxStringMac> UMID::Description() {
  std::string text;
  for (unsigned int i = 0; i < m_length; ++i) text += FormatText(i == 0 ? "%02X" : ".%02X", m_data[i]);
  return CreateOxString(text);
}
