#include "foundation/OxVector.h"

OxSharedPtr<OxVector<unsigned char>> CreateOxVectorUInt8() {
  return OxSharedPtr<OxVector<unsigned char>>(new OxVector<unsigned char>);
}

OxSharedPtr<OxVector<int>> CreateOxVectorSInt32() { return OxSharedPtr<OxVector<int>>(new OxVector<int>); }
