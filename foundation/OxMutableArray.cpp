#include "foundation/OxMutableArray.h"

#include <utility>

OxMutableArray::OxMutableArray() = default;

OxMutableArray::~OxMutableArray() = default;

void OxMutableArray::AddObject(OxSharedPtr<OxObject> object) { m_objects.push_back(std::move(object)); }

void OxMutableArray::RemoveAllObjects() { m_objects.clear(); }
