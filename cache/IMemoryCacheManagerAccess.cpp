#include "cache/IMemoryCacheManagerAccess.h"

IMemoryCacheManagerAccess::~IMemoryCacheManagerAccess() = default;
