#ifndef CLIPPARSER_FOUNDATION_OXMUTABLEARRAY_H
#define CLIPPARSER_FOUNDATION_OXMUTABLEARRAY_H

#include "foundation/OxArray.h"

// An OxArray that grows. Not synchronised.
class CLIPPARSER_EXPORT OxMutableArray : public OxArray {
 public:
  OxMutableArray();
  ~OxMutableArray() override;

  // Appends; an empty pointer takes a place too.
  void AddObject(OxSharedPtr<OxObject> object);
  // Lets all objects go; the array is empty afterwards.
  void RemoveAllObjects();
};

#endif  // CLIPPARSER_FOUNDATION_OXMUTABLEARRAY_H
