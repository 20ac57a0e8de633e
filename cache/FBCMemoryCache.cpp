#include "cache/FBCMemoryCache.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <new>

#include "cache/UseClock.h"
#include "foundation/Status.h"

namespace {

constexpr std::align_val_t kPageAlignment{4096};

}  // namespace

void FBCMemoryCache::FreeBuffer::operator()(unsigned char* buffer) const {
  ::operator delete[](buffer, kPageAlignment);
}

FBCMemoryCache::FBCMemoryCache() = default;

FBCMemoryCache::~FBCMemoryCache() = default;

FBCMemoryCache* FBCMemoryCache::Create() {
  auto cache = std::make_unique<FBCMemoryCache>();
  return cache->Init() == kStatusOK ? cache.release() : nullptr;
}

unsigned int FBCMemoryCache::Init() {
  const OxRecursiveLock::Hold hold(m_lock);
  m_used.clear();
  m_free.clear();
  // Not zeroed: untouched pages cost nothing.
  m_buffer.reset(new (kPageAlignment, std::nothrow) unsigned char[kBufferSize]);
  if (!m_buffer) std::terminate();
  try {
    m_used.reserve(kBlockCount);
    m_free.reserve(kBlockCount);
  } catch (const std::bad_alloc&) {
    return kStatusNoMemory;
  }
  for (unsigned long long i = 0; i < kBlockCount; ++i) m_free.push_back({0, m_buffer.get() + i * kBlockSize});
  return kStatusOK;
}

unsigned char* FBCMemoryCache::GetMemoryBufferAtFileOffset(unsigned long long offset) {
  const OxRecursiveLock::Hold hold(m_lock);
  const _FBCMemoryCacheItem* item = cacheItemAtFileOffset(offset, true);
  return item != nullptr ? item->buffer : nullptr;
}

_FBCMemoryCacheItem* FBCMemoryCache::cacheItemAtFileOffset(unsigned long long offset, bool moveToFront) {
  const auto item = Find(offset);
  if (item == m_used.end()) return nullptr;
  return moveToFront ? MoveToFront(item) : &*item;
}

unsigned char* FBCMemoryCache::addCache(unsigned long long offset) {
  const OxRecursiveLock::Hold hold(m_lock);
  const _FBCMemoryCacheItem* item = cacheItemAtFileOffset(offset, true);
  return item != nullptr ? item->buffer : AddMissing(offset);
}

unsigned char* FBCMemoryCache::AddMissing(unsigned long long offset) {
  if (!m_free.empty()) {
    m_used.push_back(m_free.back());
    m_free.pop_back();
  }
  if (m_used.empty()) return nullptr;
  _FBCMemoryCacheItem* item = MoveToFront(std::prev(m_used.end()));
  item->fileOffset = offset;
  return item->buffer;
}

void FBCMemoryCache::delCache(unsigned long long offset) {
  const OxRecursiveLock::Hold hold(m_lock);
  const auto item = Find(offset);
  if (item == m_used.end()) return;
  m_free.push_back(*item);
  m_used.erase(item);
}

unsigned int FBCMemoryCache::cleanCache() {
  const OxRecursiveLock::Hold hold(m_lock);
  m_free.insert(m_free.end(), m_used.rbegin(), m_used.rend());
  m_used.clear();
  return kStatusOK;
}

unsigned long FBCMemoryCache::BlockCount() {
  const OxRecursiveLock::Hold hold(m_lock);
  return m_used.size() + m_free.size();
}

FBCMemoryCache::ItemList::iterator FBCMemoryCache::Find(unsigned long long offset) {
  return std::find_if(m_used.begin(), m_used.end(),
                      [offset](const _FBCMemoryCacheItem& item) { return item.fileOffset == offset; });
}

_FBCMemoryCacheItem* FBCMemoryCache::MoveToFront(ItemList::iterator item) {
  if (item != m_used.begin()) {
    const _FBCMemoryCacheItem moved = *item;
    std::move_backward(m_used.begin(), item, std::next(item));
    m_used.front() = moved;
  }
  return &m_used.front();
}

void FBCMemoryCache::NoteUse() { m_lastUse.store(UseTime(), std::memory_order_relaxed); }

void FBCMemoryCache::LendTo(IMemoryCacheManagerAccess* holder) {
  const OxRecursiveLock::Hold hold(m_lock);
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
  m_isDiscarded.store(true, std::memory_order_relaxed);
  if (!m_lock.TryLock()) return;
  m_holder = nullptr;
  m_used.clear();
  m_free.clear();
  m_buffer.reset();
  m_lock.Unlock();
}
