#include "cache/FBCMemoryCacheManager.h"

#include <algorithm>
#include <atomic>
#include <iterator>
#include <new>
#include <utility>

#include "cache/LentCache.h"
#include "foundation/OxAutoLock.h"
#include "foundation/Status.h"

namespace {

// The manager while it has a pool. Changed under the instance lock; read without, because the object it points to is
// never destroyed and looks for itself, under its own lock, whether the pool is still there.
std::atomic<FBCMemoryCacheManager*> g_instance{nullptr};

// Made on first use, without the heap, and never destroyed: a host's static object may close its clip after the
// destructors of this library have run.
template <class T>
T* NeverDestroyed() {
  alignas(T) static unsigned char memory[sizeof(T)];
  static T* const object = new (memory) T;
  return object;
}

OxRecursiveLock* InstanceLock() { return NeverDestroyed<OxRecursiveLock>(); }

}  // namespace

FBCMemoryCacheManager::FBCMemoryCacheManager() = default;

FBCMemoryCacheManager::~FBCMemoryCacheManager() { DestroyPool(); }

FBCMemoryCacheManager* FBCMemoryCacheManager::GetInstance() {
  if (FBCMemoryCacheManager* existing = ExistingInstance()) return existing;
  OxAutoLock guard(InstanceLock());
  if (FBCMemoryCacheManager* existing = ExistingInstance()) return existing;
  auto* manager = NeverDestroyed<FBCMemoryCacheManager>();
  if (manager->Init() == kStatusOK) {
    g_instance.store(manager, std::memory_order_release);
  } else {
    manager->DestroyPool();
  }
  return ExistingInstance();
}

unsigned int FBCMemoryCacheManager::DeactivateInstance() {
  OxAutoLock guard(InstanceLock());
  if (FBCMemoryCacheManager* manager = g_instance.exchange(nullptr)) manager->DestroyPool();
  return kStatusOK;
}

unsigned int FBCMemoryCacheManager::Init() {
  OxAutoLock guard(&m_lock);
  try {
    for (int i = 0; i < kCacheCount; ++i) {
      OxSharedPtr<FBCMemoryCache> cache(FBCMemoryCache::Create());
      if (!cache) continue;
      cache->m_belongsToPool = true;
      m_free.push_back({nullptr, cache.get(), cache});
    }
  } catch (const std::bad_alloc&) {
    return kStatusNoMemory;
  }
  return kStatusOK;
}

unsigned int FBCMemoryCacheManager::UpdateMemoryCache(IMemoryCacheManagerAccess* access) {
  if (access == nullptr) return kStatusOK;
  Registration registration;
  {
    OxAutoLock guard(&m_lock);
    registration = Register(access);
  }
  Tell(access, registration.cache.get(), registration.isTakenAway);
  return kStatusOK;
}

_FBCMemoryCacheManagerItem* FBCMemoryCacheManager::cacheItemAtAccessPtr(IMemoryCacheManagerAccess* access,
                                                                        bool moveToFront) {
  const auto item = std::find_if(m_used.begin(), m_used.end(),
                                 [access](const _FBCMemoryCacheManagerItem& used) { return used.access == access; });
  if (item == m_used.end()) return nullptr;
  if (moveToFront) {
    m_used.splice(m_used.begin(), m_used, item);
    item->cache->NoteUse();
  }
  return &*item;
}

unsigned int FBCMemoryCacheManager::removeCache(IMemoryCacheManagerAccess* access) {
  if (access == nullptr) return kStatusOK;
  OxAutoLock guard(&m_lock);
  if (const _FBCMemoryCacheManagerItem* item = cacheItemAtAccessPtr(access, true)) {
    item->cache->TakeBack();
    m_free.splice(m_free.end(), m_used, m_used.begin());
  }
  return kStatusOK;
}

unsigned long FBCMemoryCacheManager::BlockCount() {
  OxAutoLock guard(&m_lock);
  unsigned long count = 0;
  for (const ItemList* list : {&m_used, &m_free}) {
    for (const _FBCMemoryCacheManagerItem& item : *list) count += item.cache->BlockCount();
  }
  return count;
}

FBCMemoryCacheManager* FBCMemoryCacheManager::ExistingInstance() { return g_instance.load(std::memory_order_acquire); }

bool FBCMemoryCacheManager::LendForRead(IMemoryCacheManagerAccess* access, LentCache& lent) {
  FBCMemoryCacheManager* manager = GetInstance();
  if (manager == nullptr) return false;
  lent = manager->Lend(access);
  if (lent) return true;
  // DeactivateInstance may have come in between. Once more, with the instance lock to keep it out.
  OxAutoLock guard(InstanceLock());
  manager = GetInstance();
  if (manager == nullptr) return false;
  lent = manager->Lend(access);
  return true;
}

LentCache FBCMemoryCacheManager::Lend(IMemoryCacheManagerAccess* access) {
  Registration registration;
  LentCache lent;
  {
    OxAutoLock guard(&m_lock);
    registration = Register(access);
    lent = LentCache(registration.cache.get());
  }
  Tell(access, lent.get(), registration.isTakenAway);
  return lent;
}

FBCMemoryCacheManager::Registration FBCMemoryCacheManager::Register(IMemoryCacheManagerAccess* access) {
  if (const _FBCMemoryCacheManagerItem* item = cacheItemAtAccessPtr(access, true)) return {item->owner, false};
  Registration registration;
  if (!m_free.empty()) {
    m_free.back().cache->LendTo(access);
    m_used.splice(m_used.begin(), m_free, std::prev(m_free.end()));
  } else {
    registration.isTakenAway = true;
    if (m_used.empty()) return registration;
    const auto taken = TakeFromLeastRecentUser(access);  // first: it puts the list in order
    m_used.splice(m_used.begin(), m_used, taken);
  }
  m_used.front().access = access;
  m_used.front().cache->NoteUse();
  registration.cache = m_used.front().owner;
  return registration;
}

// A cache that is being read through is passed over, so that nobody waits for another's disk while there is a choice.
// With one thread it is always the last of the list.
FBCMemoryCacheManager::ItemList::iterator FBCMemoryCacheManager::TakeFromLeastRecentUser(
    IMemoryCacheManagerAccess* access) {
  OrderByUse();
  for (auto item = m_used.end(); item != m_used.begin();) {
    --item;
    if (item->cache->TryLendTo(access)) return item;
  }
  m_used.back().cache->LendTo(access);
  return std::prev(m_used.end());
}

// The times are taken down first: reads that are going on change them.
void FBCMemoryCacheManager::OrderByUse() {
  for (_FBCMemoryCacheManagerItem& item : m_used) item.lastUse = item.cache->LastUse();
  m_used.sort(
      [](const _FBCMemoryCacheManagerItem& a, const _FBCMemoryCacheManagerItem& b) { return a.lastUse > b.lastUse; });
}

void FBCMemoryCacheManager::Tell(IMemoryCacheManagerAccess* access, FBCMemoryCache* cache, bool isTakenAway) {
  if (isTakenAway) access->EraseCache();
  if (cache != nullptr) access->SetUseCache(cache);
}

void FBCMemoryCacheManager::DestroyPool() {
  OxAutoLock guard(&m_lock);
  for (ItemList* list : {&m_free, &m_used}) {
    for (; !list->empty(); list->pop_back()) list->back().cache->TryDiscard();
  }
}
