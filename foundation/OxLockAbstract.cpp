#include "foundation/OxLockAbstract.h"

OxLockAbstract::OxLockAbstract() = default;

OxLockAbstract::~OxLockAbstract() = default;

void OxLockAbstract::Lock() {}

void OxLockAbstract::Unlock() {}
