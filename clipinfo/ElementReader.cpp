#include "clipinfo/ElementReader.h"

#include <limits>

#include "clipinfo/Text.h"

namespace {

constexpr unsigned int kVersionByte = 7;
constexpr unsigned int kKeySize = 16;

[[noreturn]] void FailAt(unsigned int editUnit, const std::string& reason) {
  throw CommandError("edit unit " + std::to_string(editUnit) + ": " + reason);
}

}  // namespace

const std::vector<unsigned char>& ElementReader::Read(unsigned int editUnit) {
  const Element element = Find(editUnit);
  CheckKind(editUnit, element);
  const unsigned long long size = element.type == kKeySystemMetadataPack ? SystemItemSize(element) : element.size;
  if (size > std::numeric_limits<unsigned int>::max()) FailAt(editUnit, "the element is too large");
  m_bytes.resize(size);
  if (size == 0) return m_bytes;
  const auto wanted = static_cast<unsigned int>(size);
  if (m_clip.Stream().ReadEssenceData(editUnit, m_element, m_bytes.data(), wanted) != wanted) {
    FailAt(editUnit, "the element cannot be read" + PlaceText(element.offset));
  }
  return m_bytes;
}

Element ElementReader::Find(unsigned int editUnit) {
  unsigned long long offset = 0;
  if (m_clip.Stream().GetEssenceOffset(editUnit, m_element, offset) != kStatusOK) {
    FailAt(editUnit, NotFoundText(editUnit));
  }
  Element element = m_clip.ElementAt(offset);
  if (!element.isRead) FailAt(editUnit, "the element is not whole in the file" + PlaceText(offset));
  return element;
}

void ElementReader::CheckKind(unsigned int editUnit, const Element& element) {
  const bool isEssence = (element.type & 0xFF000000) == kKeyEssence;
  if (!isEssence && element.type != kKeySystemMetadataPack) {
    FailAt(editUnit, "the element is neither essence nor a system item" + PlaceText(element.offset));
  }
  if (!m_isKindKnown) m_key = element.key;
  m_isKindKnown = true;
  if (!isSameKind(m_key, element.key)) {
    FailAt(editUnit, "the element is of another kind than the first" + PlaceText(element.offset));
  }
}

// The system metadata pack and the package metadata set that may follow it: they are read as one.
unsigned long long ElementReader::SystemItemSize(const Element& pack) {
  const Element set = m_clip.ElementAt(pack.next);
  return set.isRead && set.type == kKeySystemItemLocalSet ? pack.size + set.size : pack.size;
}

std::string ElementReader::NotFoundText(unsigned int editUnit) {
  const unsigned int count = m_clip.ElementCount(editUnit);
  if (count == 0) return m_clip.NoIndexText();
  return "no element " + std::to_string(m_element) + ", the index has " + std::to_string(count);
}

bool isSameKind(const MxfUUID& one, const MxfUUID& other) {
  for (unsigned int i = 0; i < kKeySize; ++i) {
    if (i != kVersionByte && one.ValueAtIndex(i) != other.ValueAtIndex(i)) return false;
  }
  return true;
}
