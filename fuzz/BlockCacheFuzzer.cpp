#include <algorithm>
#include <list>

#include "cache/FBCMemoryCache.h"
#include "fuzz/FuzzInput.h"

// Any sequence of calls against a list of offsets, most recent first: which blocks are there, and who goes first.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kBlocks = FBCMemoryCache::kBufferSize / FBCMemoryCache::kBlockSize;
  FuzzInput choices(data, size);
  const OxSharedPtr<FBCMemoryCache> cache(FBCMemoryCache::Create());
  std::list<unsigned long long> model;
  while (!choices.isEmpty()) {
    const unsigned int call = choices.Choose(16);
    const unsigned long long offset = choices.Byte() * FBCMemoryCache::kBlockSize;
    const auto found = std::find(model.begin(), model.end(), offset);
    const bool isThere = found != model.end();
    if (call < 8) {
      unsigned char* block = cache->addCache(offset);
      if (block == nullptr) __builtin_trap();
      *block = static_cast<unsigned char>(offset / FBCMemoryCache::kBlockSize);
      if (isThere) model.erase(found);
      model.push_front(offset);
      if (model.size() > kBlocks) model.pop_back();
    } else if (call < 13) {
      const unsigned char* block = cache->GetMemoryBufferAtFileOffset(offset);
      if ((block != nullptr) != isThere) __builtin_trap();
      if (isThere && *block != offset / FBCMemoryCache::kBlockSize) __builtin_trap();
      if (isThere) model.splice(model.begin(), model, found);
    } else if (call < 15) {
      cache->delCache(offset);
      if (isThere) model.erase(found);
    } else {
      static_cast<void>(cache->cleanCache());
      model.clear();
    }
    if (cache->BlockCount() != kBlocks) __builtin_trap();
  }
  return 0;
}
