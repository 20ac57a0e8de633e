#include "cache/FBCMemoryCache.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

constexpr unsigned long long kBlock = FBCMemoryCache::kBlockSize;

class FBCMemoryCacheTest : public testing::Test {
 protected:
  ~FBCMemoryCacheTest() override { EXPECT_EQ(64u, cache->BlockCount()); }

  // Hands out all blocks, for offsets 0, 65,536, ...
  void Fill() {
    for (unsigned long long i = 0; i < 64; ++i) cache->addCache(i * kBlock);
  }

  std::unique_ptr<FBCMemoryCache> cache{FBCMemoryCache::Create()};
};

TEST_F(FBCMemoryCacheTest, BlocksAreHandedOutFromTheHighestAddressDown) {
  const unsigned char* first = cache->addCache(0);
  for (unsigned long long i = 1; i < 64; ++i) EXPECT_EQ(first - i * kBlock, cache->addCache(i * kBlock));
}

TEST_F(FBCMemoryCacheTest, TheLeastRecentlyUsedBlockIsRecycled) {
  Fill();
  unsigned char* zeroth = cache->GetMemoryBufferAtFileOffset(0);  // used again, so block 1 is now the oldest
  unsigned char* oldest = cache->cacheItemAtFileOffset(kBlock, false)->buffer;
  EXPECT_EQ(oldest, cache->addCache(64 * kBlock));
  EXPECT_EQ(nullptr, cache->GetMemoryBufferAtFileOffset(kBlock));
  EXPECT_EQ(zeroth, cache->GetMemoryBufferAtFileOffset(0));
}

TEST_F(FBCMemoryCacheTest, AddingAPresentOffsetRenewsItsBlock) {
  Fill();
  unsigned char* zeroth = cache->cacheItemAtFileOffset(0, false)->buffer;
  EXPECT_EQ(zeroth, cache->addCache(0));
  EXPECT_NE(zeroth, cache->addCache(64 * kBlock));
}

TEST_F(FBCMemoryCacheTest, ADeletedBlockIsTheNextOneHandedOut) {
  Fill();
  unsigned char* seventh = cache->GetMemoryBufferAtFileOffset(7 * kBlock);
  cache->delCache(7 * kBlock);
  cache->delCache(7 * kBlock);
  EXPECT_EQ(nullptr, cache->GetMemoryBufferAtFileOffset(7 * kBlock));
  EXPECT_EQ(seventh, cache->addCache(99 * kBlock));
}

TEST_F(FBCMemoryCacheTest, ACleanedCacheHoldsNothingAndHandsOutTheLastUsedBlockFirst) {
  Fill();
  unsigned char* lastUsed = cache->GetMemoryBufferAtFileOffset(30 * kBlock);
  EXPECT_EQ(0u, cache->cleanCache());
  for (unsigned long long i = 0; i < 64; ++i) EXPECT_EQ(nullptr, cache->GetMemoryBufferAtFileOffset(i * kBlock));
  EXPECT_EQ(lastUsed, cache->addCache(5 * kBlock));
}

}  // namespace
