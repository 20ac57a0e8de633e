#ifndef CLIPPARSER_CACHE_FBCMEMORYCACHE_H
#define CLIPPARSER_CACHE_FBCMEMORYCACHE_H

#include <atomic>
#include <memory>
#include <vector>

#include "foundation/Export.h"
#include "foundation/OxObject.h"
#include "foundation/OxRecursiveLock.h"

class IMemoryCacheManagerAccess;

// One block: 64 KiB of a file.
struct _FBCMemoryCacheItem {
  unsigned long long fileOffset;  // of the block's first byte; meaningful while the block is used
  unsigned char* buffer;          // the block's bytes, inside the cache's one allocation
};

// 64 blocks of 64 KiB in one allocation of 4 MiB, each free or holding the bytes of one file at a multiple of 65,536.
// The cache keeps track of the blocks; whoever uses it reads the file. A block is known by its offset alone, so a cache
// must be emptied before another file is read through it.
//
// Blocks are recycled in least recently used order. Handing out a block allocates nothing, and the buffer's pages are
// not touched before a file is read into them.
// Threads: each public operation takes the cache's lock, cacheItemAtFileOffset excepted. A stream holds that lock for
// the whole of a read (LentCache), because the lock also stands for the blocks' bytes.
class CLIPPARSER_EXPORT FBCMemoryCache : public OxObject {
 public:
  // Bytes of a block, bytes of all, blocks of a cache.
  static constexpr unsigned long long kBlockSize = 0x10000;
  static constexpr unsigned long long kBufferSize = 0x400000;
  static constexpr unsigned long long kBlockCount = kBufferSize / kBlockSize;

  FBCMemoryCache();
  ~FBCMemoryCache() override;

  // A cache ready for use, the caller's to delete; null when there is no memory for its lists.
  static FBCMemoryCache* Create();

  // Takes the memory; all blocks are free afterwards, the one at the highest address the first to be handed out.
  //   0           ready
  //   0x00140002  no memory for the lists; the blocks listed so far stay
  // The process ends when the 4 MiB cannot be had.
  [[nodiscard]] unsigned int Init();

  // The bytes of the block at `offset`, a multiple of 65,536, which becomes the most recently used one; null when no
  // block holds that offset.
  unsigned char* GetMemoryBufferAtFileOffset(unsigned long long offset);

  // The first block in use for `offset`, or null; `moveToFront` makes it the most recently used one. The pointer is
  // valid until the cache is used again. The caller must hold the cache's lock, or be the only thread that uses the
  // cache.
  _FBCMemoryCacheItem* cacheItemAtFileOffset(unsigned long long offset, bool moveToFront);

  // A block for `offset`, which the caller must fill: the one that holds the offset already, else a free one, else the
  // least recently used one. Null when the cache has no blocks at all.
  unsigned char* addCache(unsigned long long offset);

  // Frees the block of `offset`, if there is one.
  void delCache(unsigned long long offset);

  // Frees all blocks; the most recently used one is then the first to be handed out. Returns 0.
  unsigned int cleanCache();

  // Blocks used and free together: 64, whatever happened, until the pool of the cache is destroyed.
  [[nodiscard]] unsigned long BlockCount();

  // A cache of the manager's pool is lent, taken away and destroyed by the manager. One that was made with Create is
  // its maker's.
  [[nodiscard]] bool BelongsToPool() const { return m_belongsToPool; }

  // Whether the manager has lent the cache to `access` and not taken it away since. The caller must hold the cache's
  // lock.
  [[nodiscard]] bool IsLentTo(const IMemoryCacheManagerAccess* access) const {
    return m_holder == access && !m_isDiscarded.load(std::memory_order_relaxed);
  }

 private:
  friend class FBCMemoryCacheManager;
  friend class LentCache;
  using ItemList = std::vector<_FBCMemoryCacheItem>;

  // With the cache's lock held.
  _FBCMemoryCacheItem* MoveToFront(ItemList::iterator item);
  unsigned char* AddMissing(unsigned long long offset);  // as addCache, for an offset that no block holds
  ItemList::iterator Find(unsigned long long offset);

  // For the manager, with its lock held. Each change of holder empties the cache.
  void LendTo(IMemoryCacheManagerAccess* holder);
  // The same, unless another thread holds the cache's lock: then nothing is done, and the answer is false.
  [[nodiscard]] bool TryLendTo(IMemoryCacheManagerAccess* holder);
  void TakeBack() { LendTo(nullptr); }
  // The time of the latest use, see UseClock.h. Changed and read by any thread.
  void NoteUse();
  [[nodiscard]] unsigned long long LastUse() const { return m_lastUse.load(std::memory_order_relaxed); }
  // Gives the memory back and ends the lending, unless a read is going on: then the last pointer to the cache does it.
  void TryDiscard();

  OxRecursiveLock m_lock;
  // Every block is in exactly one of the two lists. Each has room for all blocks from the start, so that moving one
  // cannot fail, and lies in one piece, so that looking through 64 blocks touches few cache lines.
  ItemList m_used;  // most recently used first
  ItemList m_free;  // taken from and returned to its back
  // Begins at a page: the system copies into it 64 KiB at a time, up to a quarter faster than to any other address.
  struct FreeBuffer {
    void operator()(unsigned char* buffer) const;
  };
  std::unique_ptr<unsigned char[], FreeBuffer> m_buffer;
  IMemoryCacheManagerAccess* m_holder = nullptr;
  std::atomic<unsigned long long> m_lastUse{0};
  std::atomic<bool> m_isDiscarded{false};  // the pool is gone, though a read may still be going on
  bool m_belongsToPool = false;            // set by the manager before anyone else sees the cache
};

#endif  // CLIPPARSER_CACHE_FBCMEMORYCACHE_H
