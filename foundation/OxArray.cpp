#include "foundation/OxArray.h"

OxArray::OxArray() = default;

OxArray::~OxArray() = default;

OxSharedPtr<OxObject> OxArray::ObjectAtIndex(unsigned long index) const {
  return index < m_objects.size() ? m_objects[index] : OxSharedPtr<OxObject>();
}

OxSharedPtr<OxObject> OxArray::LastObject() const {
  return m_objects.empty() ? OxSharedPtr<OxObject>() : m_objects.back();
}
