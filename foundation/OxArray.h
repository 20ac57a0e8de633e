#ifndef CLIPPARSER_FOUNDATION_OXARRAY_H
#define CLIPPARSER_FOUNDATION_OXARRAY_H

#include <vector>

#include "foundation/Export.h"
#include "foundation/OxObject.h"
#include "foundation/OxSharedPtr.h"

// An ordered array of objects, some of which may be empty pointers. Narrow what comes back with OxSharedPtr's casting
// conversion. Not synchronised.
class CLIPPARSER_EXPORT OxArray : public OxObject {
 public:
  OxArray();
  ~OxArray() override;

  // Objects in the array, empty pointers included.
  [[nodiscard]] unsigned long Count() const { return m_objects.size(); }
  // Empty when `index` is not below the count.
  [[nodiscard]] OxSharedPtr<OxObject> ObjectAtIndex(unsigned long index) const;
  // Empty when the array is.
  [[nodiscard]] OxSharedPtr<OxObject> LastObject() const;

 protected:
  std::vector<OxSharedPtr<OxObject>> m_objects;  // in order; OxMutableArray adds to them
};

#endif  // CLIPPARSER_FOUNDATION_OXARRAY_H
