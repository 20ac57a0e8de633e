#ifndef CLIPPARSER_CACHE_IMEMORYCACHEMANAGERACCESS_H
#define CLIPPARSER_CACHE_IMEMORYCACHEMANAGERACCESS_H

#include "foundation/Export.h"

class FBCMemoryCache;

// A user of the pool of block caches, as FBCMemoryCacheManager sees it. The manager knows a user by the address of this
// part of it. The user must outlive its registration: FBCMemoryCacheManager::removeCache ends it.
//
// Both operations are called from inside FBCMemoryCacheManager::UpdateMemoryCache, on the caller's thread, with no lock
// of the manager held. By the time a call arrives another thread may have taken the cache away again, so that a user
// that shares its cache with other threads must ask the manager before it touches a block.
class CLIPPARSER_EXPORT IMemoryCacheManagerAccess {
 public:
  virtual ~IMemoryCacheManagerAccess();

  // From now on use this cache. It stays the manager's.
  virtual void SetUseCache(FBCMemoryCache* cache) = 0;
  // Forget the cache in use.
  virtual void EraseCache() = 0;

 protected:
  IMemoryCacheManagerAccess() = default;
  IMemoryCacheManagerAccess(const IMemoryCacheManagerAccess&) = default;
  IMemoryCacheManagerAccess& operator=(const IMemoryCacheManagerAccess&) = default;
};

#endif  // CLIPPARSER_CACHE_IMEMORYCACHEMANAGERACCESS_H
