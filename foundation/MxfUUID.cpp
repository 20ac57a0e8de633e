#include "foundation/MxfUUID.h"

#include <algorithm>

#include "foundation/FormatText.h"

MxfUUID::MxfUUID() = default;

MxfUUID::MxfUUID(const unsigned char* bytes) { SetKey(bytes); }

MxfUUID::MxfUUID(unsigned int word0, unsigned int word1, unsigned int word2, unsigned int word3) {
  const unsigned int words[] = {word0, word1, word2, word3};
  for (unsigned int i = 0; i < kSize; ++i) m_key[i] = static_cast<unsigned char>(words[i / 4] >> (24 - i % 4 * 8));
}

MxfUUID::~MxfUUID() = default;

void MxfUUID::SetKey(const unsigned char* bytes) {
  if (bytes != nullptr) std::copy_n(bytes, kSize, m_key.begin());
}

void MxfUUID::SetKey(const MxfUUID* other) {
  if (other != nullptr) m_key = other->m_key;
}

unsigned char MxfUUID::ValueAtIndex(unsigned int index) const {
  if (index >= kSize) throw static_cast<const char*>("Index range error");
  return m_key[index];
}

OxSharedPtr<OxStringMac> MxfUUID::Description() {
  const Key& k = m_key;
  return CreateOxString(FormatText("%02X.%02X.%02X.%02X.%02X.%02X.%02X.%02X.%02X.%02X.%02X.%02X.%02X.%02X.%02X.%02X",
                                   k[0], k[1], k[2], k[3], k[4], k[5], k[6], k[7], k[8], k[9], k[10], k[11], k[12],
                                   k[13], k[14], k[15]));
}
