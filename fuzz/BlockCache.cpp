#include <deque>
#include <list>

#include "cache/FBCMemoryCache.h"
#include "fuzz/Fuzz.h"

namespace {

constexpr auto kBlockSize = FBCMemoryCache::kBlockSize;
constexpr int kBlocks = FBCMemoryCache::kBufferSize / kBlockSize;

// Which block lies where, and which goes first: the blocks of one cache as a list that is searched from its front.
class CacheModel {
 public:
  // A cache is emptied from its least recently used block on; the last one is then handed out first.
  explicit CacheModel(FBCMemoryCache& cache) : m_cache(cache) {
    cache.cleanCache();
    for (unsigned long long i = 0; i < kBlocks; ++i) m_free.push_back(cache.addCache(i * kBlockSize));
    cache.cleanCache();
  }

  void Run(Script& script) {
    while (!script.isOver()) {
      const unsigned int step = script.Byte();
      Step(step, static_cast<unsigned long long>(script.Number()) * kBlockSize);
      MUST(m_cache.BlockCount() == kBlocks);
    }
  }

 private:
  struct Block {
    unsigned long long offset;
    unsigned char* bytes;
  };

  static unsigned char Mark(unsigned long long offset) { return static_cast<unsigned char>(offset / kBlockSize); }

  void Step(unsigned int step, unsigned long long offset) {
    auto block = std::find_if(m_used.begin(), m_used.end(), [offset](const Block& b) { return b.offset == offset; });
    const bool isUsed = block != m_used.end();
    if (step == 0xFF) {
      MUST(m_cache.cleanCache() == 0);
      for (; !m_used.empty(); m_used.pop_back()) m_free.push_back(m_used.back().bytes);
    } else if (step % 8 == 0) {
      m_cache.delCache(offset);
      if (isUsed) m_free.push_back(block->bytes), m_used.erase(block);
    } else if (step % 2 == 0) {
      unsigned char* bytes = m_cache.GetMemoryBufferAtFileOffset(offset);
      MUST(bytes == (isUsed ? block->bytes : nullptr));
      if (!isUsed) return;
      MUST(bytes[0] == Mark(offset) && bytes[kBlockSize - 1] == Mark(offset));
      m_used.splice(m_used.begin(), m_used, block);
    } else {
      unsigned char* bytes = m_cache.addCache(offset);
      if (!isUsed) {
        if (!m_free.empty()) m_used.push_back({offset, m_free.back()}), m_free.pop_back();
        block = std::prev(m_used.end());
        block->offset = offset;
      }
      m_used.splice(m_used.begin(), m_used, block);
      MUST(bytes == block->bytes);
      bytes[0] = bytes[kBlockSize - 1] = Mark(offset);
    }
  }

  FBCMemoryCache& m_cache;
  std::list<Block> m_used;
  std::deque<unsigned char*> m_free;
};

}  // namespace

// A script of calls, to one cache for all, since making it takes longer than they do.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Script script(data, std::min<std::size_t>(size, 1024));
  static const std::unique_ptr<FBCMemoryCache> cache(FBCMemoryCache::Create());
  CacheModel(*cache).Run(script);
  return 0;
}
