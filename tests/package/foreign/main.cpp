#include "stream/MXFStream.h"

// A clip that is not there: constructed without complaint, refused by Parse.
int main() {
  MXFStream clip(OxSharedPtr<OxStringMac>(new OxStringMac("/nonexistent.mxf", kOxStringCharCode8Bit)));
  return clip.Parse() == kStatusUnreadable ? 0 : 1;
}
