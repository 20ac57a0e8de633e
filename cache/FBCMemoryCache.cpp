#include "cache/FBCMemoryCache.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <new>

#include "foundation/OxAutoLock.h"
#include "foundation/Status.h"

FBCMemoryCache::FBCMemoryCache() = default;

FBCMemoryCache::~FBCMemoryCache() = default;

FBCMemoryCache* FBCMemoryCache::Create() {
  auto cache = std::make_unique<FBCMemoryCache>();
  return cache->Init() == kStatusOK ? cache.release() : nullptr;
}

unsigned int FBCMemoryCache::Init() {
  OxAutoLock guard(&m_lock);
  m_used.clear();
  m_free.clear();
  m_buffer.reset(new (std::nothrow) unsigned char[kBufferSize]);  // not zeroed: untouched pages cost no memory
  if (!m_buffer) std::terminate();
  try {
    for (unsigned long long start = 0; start < kBufferSize; start += kBlockSize) {
      m_free.push_back({0, m_buffer.get() + start});
    }
  } catch (const std::bad_alloc&) {
    return kStatusNoMemory;
  }
  return kStatusOK;
}

unsigned char* FBCMemoryCache::GetMemoryBufferAtFileOffset(unsigned long long offset) {
  OxAutoLock guard(&m_lock);
  const _FBCMemoryCacheItem* item = cacheItemAtFileOffset(offset, true);
  return item != nullptr ? item->buffer : nullptr;
}

_FBCMemoryCacheItem* FBCMemoryCache::cacheItemAtFileOffset(unsigned long long offset, bool moveToFront) {
  const auto item = Find(offset);
  if (item == m_used.end()) return nullptr;
  if (moveToFront) m_used.splice(m_used.begin(), m_used, item);
  return &*item;
}

unsigned char* FBCMemoryCache::addCache(unsigned long long offset) {
  OxAutoLock guard(&m_lock);
  if (const _FBCMemoryCacheItem* item = cacheItemAtFileOffset(offset, true)) return item->buffer;
  ItemList& source = m_free.empty() ? m_used : m_free;
  if (source.empty()) return nullptr;
  m_used.splice(m_used.begin(), source, std::prev(source.end()));
  m_used.front().fileOffset = offset;
  return m_used.front().buffer;
}

void FBCMemoryCache::delCache(unsigned long long offset) {
  OxAutoLock guard(&m_lock);
  const auto item = Find(offset);
  if (item != m_used.end()) m_free.splice(m_free.end(), m_used, item);
}

unsigned int FBCMemoryCache::cleanCache() {
  OxAutoLock guard(&m_lock);
  while (!m_used.empty()) m_free.splice(m_free.end(), m_used, std::prev(m_used.end()));
  return kStatusOK;
}

unsigned long FBCMemoryCache::BlockCount() {
  OxAutoLock guard(&m_lock);
  return m_used.size() + m_free.size();
}

FBCMemoryCache::ItemList::iterator FBCMemoryCache::Find(unsigned long long offset) {
  return std::find_if(m_used.begin(), m_used.end(),
                      [offset](const _FBCMemoryCacheItem& item) { return item.fileOffset == offset; });
}

void FBCMemoryCache::LendTo(IMemoryCacheManagerAccess* holder) {
  OxAutoLock guard(&m_lock);
  cleanCache();
  m_holder = holder;
}

bool FBCMemoryCache::TryLendTo(IMemoryCacheManagerAccess* holder) {
  if (!m_lock.TryLock()) return false;
  LendTo(holder);
  m_lock.Unlock();
  return true;
}

void FBCMemoryCache::TryDiscard() {
  if (!m_lock.TryLock()) return;
  m_holder = nullptr;
  m_used.clear();
  m_free.clear();
  m_buffer.reset();
  m_lock.Unlock();
}
