#ifndef CLIPPARSER_FOUNDATION_OXVECTOR_H
#define CLIPPARSER_FOUNDATION_OXVECTOR_H

#include <string>
#include <type_traits>
#include <vector>

#include "foundation/Export.h"
#include "foundation/OxObject.h"
#include "foundation/OxSharedPtr.h"
#include "foundation/OxStringMac.h"

// A standard vector that can be handed around as an object. Not synchronised.
template <class T>
class CLIPPARSER_EXPORT OxVector : public std::vector<T>, public OxObject {
 public:
  OxVector() = default;
  ~OxVector() override = default;

  // Integers in decimal: { 1, 2, 3 } for three of them, {} for none. Other elements give the base's text.
  OxSharedPtr<OxStringMac> Description() override {
    if constexpr (std::is_integral_v<T>) {
      std::string text = "{";
      for (std::size_t i = 0; i < this->size(); ++i) {
        // A byte is a number here, never a character.
        text += " " + std::to_string(+(*this)[i]) + (i + 1 < this->size() ? "," : " ");
      }
      return CreateOxString(text + "}");
    } else {
      return OxObject::Description();
    }
  }
};

// New, empty vectors.
CLIPPARSER_EXPORT OxSharedPtr<OxVector<unsigned char>> CreateOxVectorUInt8();
CLIPPARSER_EXPORT OxSharedPtr<OxVector<int>> CreateOxVectorSInt32();

#endif  // CLIPPARSER_FOUNDATION_OXVECTOR_H
