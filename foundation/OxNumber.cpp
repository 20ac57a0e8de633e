#include "foundation/OxNumber.h"

OxNumber::OxNumber() = default;

OxNumber::~OxNumber() = default;
