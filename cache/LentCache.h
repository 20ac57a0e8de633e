#ifndef CLIPPARSER_CACHE_LENTCACHE_H
#define CLIPPARSER_CACHE_LENTCACHE_H

#include <utility>

#include "cache/FBCMemoryCache.h"

// A cache that no other thread can touch for the life of this object, which holds its lock; or none. The caller must
// keep the cache alive.
class LentCache {
 public:
  LentCache() = default;
  explicit LentCache(FBCMemoryCache* cache) : m_cache(cache) {
    if (m_cache != nullptr) m_cache->m_lock.Lock();
  }
  LentCache(LentCache&& other) noexcept : m_cache(std::exchange(other.m_cache, nullptr)) {}
  LentCache& operator=(LentCache&& other) noexcept {
    std::swap(m_cache, other.m_cache);
    return *this;
  }
  ~LentCache() {
    if (m_cache != nullptr) m_cache->m_lock.Unlock();
  }

  FBCMemoryCache* get() const { return m_cache; }
  explicit operator bool() const { return m_cache != nullptr; }

  // Notes that the holder uses the cache now: all that registering it with the manager again would change.
  void NoteUse() const { m_cache->NoteUse(); }
  // As FBCMemoryCache::addCache, for an offset that no block holds.
  unsigned char* AddMissing(unsigned long long offset) const { return m_cache->AddMissing(offset); }

 private:
  FBCMemoryCache* m_cache = nullptr;
};

#endif  // CLIPPARSER_CACHE_LENTCACHE_H
