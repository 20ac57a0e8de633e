#include "cache/CacheFileStream.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "cache/FBCMemoryCacheManager.h"
#include "cache/LentCache.h"
#include "foundation/CopyBytes.h"
#include "foundation/Status.h"

namespace {

constexpr unsigned long long kBlockSize = FBCMemoryCache::kBlockSize;

unsigned long long InBlock(unsigned long long offset) { return offset % kBlockSize; }

unsigned long long BlockBase(unsigned long long offset) { return offset - InBlock(offset); }

// The part of a request that lies in the block of its first byte.
unsigned long long ChunkLength(unsigned long long offset, unsigned long long length) {
  return std::min(kBlockSize - InBlock(offset), length);
}

}  // namespace

CacheFileStream::CacheFileStream() = default;

CacheFileStream::~CacheFileStream() {
  m_file.Close();
  try {
    LeavePool();
  } catch (...) {  // a lock that cannot be had: nothing a destructor can do about it
  }
}

OxSharedPtr<CacheFileStream> CacheFileStream::Create(OxSharedPtr<OxStringMac> path) {
  OxSharedPtr<CacheFileStream> stream(new CacheFileStream);
  if (stream->Init(path) != kStatusOK) stream.Reset();
  return stream;
}

unsigned int CacheFileStream::Init(OxSharedPtr<OxStringMac> path) {
  const OxRecursiveLock::Hold hold(m_lock);
  // Blocks of a file opened earlier must not answer for the new one.
  LeavePool();
  EraseCache();
  m_file.Close();
  const bool isOpen = path && m_file.Open(std::string(path->UTF8String(), path->ByteCount()));
  SetLength(m_file.Size());
  FBCMemoryCacheManager::GetInstance();  // so that the pool exists; without one, each read tries again
  return isOpen ? kStatusOK : kStatusNoInput;
}

bool CacheFileStream::CanRead() { return m_file.IsOpen(); }

bool CacheFileStream::CanSeek() { return m_file.IsOpen(); }

long long CacheFileStream::Read(unsigned char* buffer, unsigned long long size, long long offset,
                                OxStream_Seek_Origin origin) {
  try {
    const OxRecursiveLock::Hold hold(m_lock);
    if (buffer == nullptr || !m_file.IsOpen()) return 0;
    const _OxRange range = CalcReadRange(size, offset, origin);
    if (range.length == 0) return 0;
    return static_cast<long long>(ReadRange(buffer, range));
  } catch (...) {
    return 0;
  }
}

long long CacheFileStream::Seek(long long offset, OxStream_Seek_Origin origin) {
  const OxRecursiveLock::Hold hold(m_lock);
  return OxStream::Seek(offset, origin);
}

void CacheFileStream::SetUseCache(FBCMemoryCache* cache) {
  const OxRecursiveLock::Hold hold(m_lock);
  m_cache = cache;
  // A cache that is not counted yet must not be wrapped: it is its maker's to delete.
  m_keptAlive = cache != nullptr && cache->BelongsToPool() ? OxSharedPtr<FBCMemoryCache>(cache) : nullptr;
}

void CacheFileStream::EraseCache() {
  const OxRecursiveLock::Hold hold(m_lock);
  m_cache = nullptr;
  m_keptAlive.Reset();
}

unsigned long long CacheFileStream::ReadFromCache(unsigned char* buffer, unsigned long long offset,
                                                  unsigned long long length) {
  const OxRecursiveLock::Hold hold(m_lock);
  const LentCache cache = LockCacheInUse();
  if (buffer == nullptr || !cache || offset >= Length()) return 0;
  return CopyFromCache(cache.get(), buffer, offset, length);
}

unsigned long long CacheFileStream::ReadFromFile(unsigned char* buffer, unsigned long long offset,
                                                 unsigned long long length) {
  const OxRecursiveLock::Hold hold(m_lock);
  const LentCache cache = LockCacheInUse();
  if (buffer == nullptr || !cache || offset >= Length()) return 0;
  return CopyFromFile(cache.get(), cache.get()->addCache(BlockBase(offset)), buffer, offset, length);
}

unsigned long long CacheFileStream::ReadFromFileSub(unsigned long long offset, unsigned long long length,
                                                    unsigned char* buffer) {
  return buffer != nullptr ? m_file.Read(offset, length, buffer) : 0;
}

// Closing a stream must not make a pool.
void CacheFileStream::LeavePool() {
  if (FBCMemoryCacheManager* manager = FBCMemoryCacheManager::ExistingInstance()) manager->removeCache(this);
}

// The cache stays locked, and therefore this stream's own, to the end of the read.
unsigned long long CacheFileStream::ReadRange(unsigned char* buffer, const _OxRange& range) {
  LentCache cache;
  if (m_keptAlive) cache = LockCacheInUse();
  if (cache) {
    cache.NoteUse();
  } else if (!FBCMemoryCacheManager::LendForRead(this, cache)) {
    std::memset(buffer, 0, range.length);
    return range.length;
  }
  if (!cache) return 0;
  for (unsigned long long done = 0; done < range.length;) {
    const unsigned long long offset = range.location + done;
    const unsigned long long rest = range.length - done;
    unsigned long long count = CopyFromCache(cache.get(), buffer + done, offset, rest);
    if (count == 0) count = CopyFromFile(cache.get(), cache.AddMissing(BlockBase(offset)), buffer + done, offset, rest);
    if (count == 0) return 0;
    done += count;
    m_position = static_cast<long long>(range.location + done);
  }
  return range.length;
}

// The cache in use, locked, if it is still this stream's. With the stream's lock held.
LentCache CacheFileStream::LockCacheInUse() const {
  LentCache cache(m_cache);
  const bool isOurs = cache && (!m_keptAlive || m_cache->IsLentTo(this));
  return isOurs ? std::move(cache) : LentCache();
}

// With the cache's lock held.
unsigned long long CacheFileStream::CopyFromCache(FBCMemoryCache* cache, unsigned char* buffer,
                                                  unsigned long long offset, unsigned long long length) const {
  const _FBCMemoryCacheItem* block = cache->cacheItemAtFileOffset(BlockBase(offset), true);
  if (block == nullptr) return 0;
  const unsigned long long count = ChunkLength(offset, length);
  CopyBytes(buffer, block->buffer + InBlock(offset), count);
  return count;
}

// Fills `block`, which the cache has just handed out. With the cache's lock held. A block stays cached only if it is
// valid up to the length that the file had when it was opened; beyond that it is zero. A block that ends earlier,
// because the file shrank, serves this request if it can, and is given back.
unsigned long long CacheFileStream::CopyFromFile(FBCMemoryCache* cache, unsigned char* block, unsigned char* buffer,
                                                 unsigned long long offset, unsigned long long length) {
  const unsigned long long base = BlockBase(offset);
  if (block == nullptr) return 0;
  const unsigned long long wanted = std::min(kBlockSize, Length() - base);
  const unsigned long long held = std::min(wanted, ReadFromFileSub(base, kBlockSize, block));
  std::memset(block + held, 0, kBlockSize - held);
  const unsigned long long count = ChunkLength(offset, length);
  const bool isServed = held == wanted || (held > InBlock(offset) && count <= held - InBlock(offset));
  if (isServed) std::memcpy(buffer, block + InBlock(offset), count);
  if (held < wanted) cache->delCache(base);
  if (!isServed) ++m_failedReads;
  return isServed ? count : 0;
}
