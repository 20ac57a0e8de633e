#ifndef CLIPPARSER_CACHE_FBCMEMORYCACHEMANAGER_H
#define CLIPPARSER_CACHE_FBCMEMORYCACHEMANAGER_H

#include <list>

#include "cache/FBCMemoryCache.h"
#include "cache/IMemoryCacheManagerAccess.h"
#include "foundation/Export.h"
#include "foundation/OxObject.h"
#include "foundation/OxRecursiveLock.h"
#include "foundation/OxSharedPtr.h"

class LentCache;

// One cache of the pool.
struct _FBCMemoryCacheManagerItem {
  IMemoryCacheManagerAccess* access;  // who holds the cache; null until it is first lent, stale while it is free
  FBCMemoryCache* cache;              // the cache; what keeps it alive is `owner`
  OxSharedPtr<FBCMemoryCache> owner;  // of the cache, together with the stream that holds it
  unsigned long long lastUse = 0;     // of the cache, when the used list was last put in order
};

// The process-wide pool: ten caches of 4 MiB, lent to the streams that read, one to each at most. When all are lent,
// the stream that used its cache least recently loses it, and is not told: its own next read registers it again.
//
// A read through a cache that the stream still holds does not come here. It notes the time of use in the cache, and the
// used list is put in that order when a cache must be taken away.
//
// Threads: everything here may be called from any thread at any time, cacheItemAtAccessPtr excepted. The locks, each
// recursive, are taken in this order only:
//   1. a stream's own   held for the whole of a read
//   2. the instance's   guards the creation and the end of the pool
//   3. the manager's    guards both lists
//   4. one cache's      guards its blocks, their bytes, and whom the cache is lent to; a stream takes it before it lets
//                       go of the manager's, and holds it to the end of its read, so that nobody takes the cache away
// Whoever holds a cache's lock waits for no lock of another thread, only for the file; a user is called back with
// neither 3 nor, from UpdateMemoryCache, 4 held. Hence no circle of waiting threads, whatever calls are mixed.
class CLIPPARSER_EXPORT FBCMemoryCacheManager : public OxObject {
 public:
  // Caches in the pool, and so streams that hold one at a time.
  static constexpr int kCacheCount = 10;

  FBCMemoryCacheManager();
  ~FBCMemoryCacheManager() override;

  // The manager, with its pool, which the first call makes; null when there is no memory for it. The pointer stays
  // valid until the process ends, also after DeactivateInstance: a manager without a pool lends nothing.
  static FBCMemoryCacheManager* GetInstance();

  // Destroys the pool with all caches and their buffers; the next GetInstance makes a new one. Streams are not told,
  // they register with the new pool by themselves. A read that is going on ends well; its cache is destroyed when its
  // stream reads again or is closed. Returns 0.
  static unsigned int DeactivateInstance();

  // Adds ten free caches, fewer when the memory for some of them is missing. GetInstance has done it.
  //   0           done
  //   0x00140002  no memory for the lists; the caches added so far stay
  [[nodiscard]] unsigned int Init();

  // Sees to it that `access` holds a cache, and tells it which one with SetUseCache. A cache taken from another user
  // comes empty, and EraseCache is called first, on `access`: the user that lost it is not called. When there is no
  // cache at all, only EraseCache is called. Returns 0; does nothing for null.
  unsigned int UpdateMemoryCache(IMemoryCacheManagerAccess* access);

  // What `access` holds, or null; `moveToFront` makes it the most recently used. No lock is taken: for a caller that is
  // the only thread to use the manager.
  _FBCMemoryCacheManagerItem* cacheItemAtAccessPtr(IMemoryCacheManagerAccess* access, bool moveToFront);

  // Takes the cache back from `access`, emptied; waits for a read through it. `access` is not called. Returns 0; does
  // nothing for null or when `access` holds none.
  unsigned int removeCache(IMemoryCacheManagerAccess* access);

  // Blocks of all caches, used and free: 640 as long as every cache could be made.
  [[nodiscard]] unsigned long BlockCount();

 private:
  friend class CacheFileStream;
  using ItemList = std::list<_FBCMemoryCacheManagerItem>;

  // What became of a request for a cache, to be told to the user when the manager's lock is released.
  struct Registration {
    OxSharedPtr<FBCMemoryCache> cache;  // empty: there is none
    bool isTakenAway = false;           // from another user, or there was none to take
  };

  // The manager if it has a pool; makes none.
  static FBCMemoryCacheManager* ExistingInstance();
  // For a stream's read, which holds the stream's lock: as UpdateMemoryCache, and leaves the cache, locked, in `lent`;
  // none there means that the pool has no caches. False when there is no pool and none can be made.
  static bool LendForRead(IMemoryCacheManagerAccess* access, LentCache& lent);

  LentCache Lend(IMemoryCacheManagerAccess* access);
  Registration Register(IMemoryCacheManagerAccess* access);  // with the manager's lock held
  // With the manager's lock held and every cache lent; the cache that is now lent to `access`.
  ItemList::iterator TakeFromLeastRecentUser(IMemoryCacheManagerAccess* access);
  void OrderByUse();  // with the manager's lock held
  static void Tell(IMemoryCacheManagerAccess* access, FBCMemoryCache* cache, bool isTakenAway);
  void DestroyPool();

  OxRecursiveLock m_lock;
  // Every cache is in exactly one of the two lists.
  ItemList m_used;  // lent; most recently used first once OrderByUse has been called
  ItemList m_free;  // taken from and returned to its back
};

#endif  // CLIPPARSER_CACHE_FBCMEMORYCACHEMANAGER_H
