#ifndef CLIPPARSER_CACHE_CACHEFILESTREAM_H
#define CLIPPARSER_CACHE_CACHEFILESTREAM_H

#include <atomic>

#include "cache/FBCMemoryCache.h"
#include "cache/IMemoryCacheManagerAccess.h"
#include "cache/ReadOnlyFile.h"
#include "foundation/Export.h"
#include "foundation/OxRecursiveLock.h"
#include "foundation/OxSharedPtr.h"
#include "foundation/OxStream.h"
#include "foundation/OxStringMac.h"

class LentCache;

// The bytes of one file, read in blocks of 64 KiB through a cache borrowed from FBCMemoryCacheManager.
//
// The length is the file's when it was opened. If the file shrinks afterwards, reads that reach into the missing part
// fail; bytes appended afterwards are never delivered.
// Threads: Read, Seek, SetUseCache, EraseCache and the ReadFrom... steps may be called from any thread; what they
// share is guarded by the stream's lock. Init and the destructor need the stream for themselves.
class CLIPPARSER_EXPORT CacheFileStream : public OxStream, public IMemoryCacheManagerAccess {
 public:
  CacheFileStream();
  ~CacheFileStream() override;

  // A stream over the file at `path`; empty when Init fails.
  static OxSharedPtr<CacheFileStream> Create(OxSharedPtr<OxStringMac> path);

  // Opens the file, whose name may be any bytes but zero; a file opened earlier is closed first. Makes the pool of
  // caches if there is none yet, whatever the outcome.
  //   0           open
  //   0x00130001  no path, or no regular file that may be read; the stream is not open and has no length
  [[nodiscard]] unsigned int Init(OxSharedPtr<OxStringMac> path);

  bool CanRead() override;  // whether a file is open
  bool CanSeek() override;  // the same

  // Delivers the part of the wanted range that lies in the file, and returns its size. 0, with the buffer in any state,
  // when there is no such part or any of it cannot be read. The stream's position moves to the end of each chunk that
  // was delivered, also for absolute reads. Never throws.
  // If the pool cannot be made for want of memory, the range's size is returned with zeros for bytes.
  long long Read(unsigned char* buffer, unsigned long long size, long long offset,
                 OxStream_Seek_Origin origin) override;
  // As OxStream::Seek, under the stream's lock.
  long long Seek(long long offset, OxStream_Seek_Origin origin) override;

  // Called by the manager. A cache that does not come from the pool must be kept alive by the caller.
  void SetUseCache(FBCMemoryCache* cache) override;
  void EraseCache() override;

  // The steps of Read, which deliver at most the rest of one block and return the count. 0 without a cache, from
  // `offset` = Length() on, and when the block is not cached (ReadFromCache) or cannot be read (ReadFromFile). They are
  // not cut at the end of the file: what a block holds beyond it is zero. The cache is the one that the manager, or the
  // caller, gave last; when the manager has lent it elsewhere since, the stream has none.
  unsigned long long ReadFromCache(unsigned char* buffer, unsigned long long offset, unsigned long long length);
  unsigned long long ReadFromFile(unsigned char* buffer, unsigned long long offset, unsigned long long length);
  // Reads from the file, past the cache: the count read, less than `length` only at the end of the file; 0 for any
  // failure.
  unsigned long long ReadFromFileSub(unsigned long long offset, unsigned long long length, unsigned char* buffer);

  // How often the disk failed a read, or a file that shrank ended before it; the end of the file is no failure. Tells a
  // caller that found nothing whether that means anything.
  [[nodiscard]] unsigned long long FailedReads() const { return m_failedReads; }

  using OxStream::operator=;

 private:
  void LeavePool();
  unsigned long long ReadRange(unsigned char* buffer, const _OxRange& range);
  LentCache LockCacheInUse() const;
  unsigned long long CopyFromCache(FBCMemoryCache* cache, unsigned char* buffer, unsigned long long offset,
                                   unsigned long long length) const;
  unsigned long long CopyFromFile(FBCMemoryCache* cache, unsigned char* block, unsigned char* buffer,
                                  unsigned long long offset, unsigned long long length);

  OxRecursiveLock m_lock;
  ReadOnlyFile m_file;
  std::atomic<unsigned long long> m_failedReads{0};
  // Not owned. Between two reads it may point to a pool's cache that is lent elsewhere or has no memory any more, which
  // only the cache itself can tell, under its lock.
  FBCMemoryCache* m_cache = nullptr;
  OxSharedPtr<FBCMemoryCache> m_keptAlive;  // the same cache, if it is of the pool: so that its lock can be taken
};

#endif  // CLIPPARSER_CACHE_CACHEFILESTREAM_H
