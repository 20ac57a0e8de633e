#include "foundation/OxObject.h"

#include "foundation/OxSharedPtr.h"
#include "foundation/OxStringMac.h"

OxObject::OxObject() noexcept = default;

OxObject::OxObject(const OxObject&) noexcept {}

OxObject::~OxObject() = default;

OxSharedPtr<OxStringMac> OxObject::Description() {
  return OxSharedPtr<OxStringMac>(new OxStringMac("<object>", kOxStringCharCode8Bit));
}

OxObject& OxObject::operator=(const OxObject&) { return *this; }
