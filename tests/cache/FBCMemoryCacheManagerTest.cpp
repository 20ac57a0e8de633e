#include "cache/FBCMemoryCacheManager.h"

#include <array>

#include "tests/cache/CacheTestSupport.h"

namespace {

// Notes what the manager tells it: 'S' for SetUseCache, 'E' for EraseCache.
class User : public IMemoryCacheManagerAccess {
 public:
  ~User() override { FBCMemoryCacheManager::GetInstance()->removeCache(this); }
  void SetUseCache(FBCMemoryCache* given) override {
    cache = given;
    calls += 'S';
  }
  void EraseCache() override { calls += 'E'; }

  FBCMemoryCache* cache = nullptr;
  std::string calls;
};

class FBCMemoryCacheManagerTest : public CacheTest {
 protected:
  void RegisterAll() {
    for (User& user : users) manager->UpdateMemoryCache(&user);
  }

  FBCMemoryCacheManager* manager = FBCMemoryCacheManager::GetInstance();
  std::array<User, 10> users;
  User eleventh;
};

TEST_F(FBCMemoryCacheManagerTest, TheEleventhUserGetsTheLeastRecentUsersCacheEmptied) {
  RegisterAll();
  users[0].cache->addCache(kBlock);
  EXPECT_EQ(0u, manager->UpdateMemoryCache(&eleventh));
  EXPECT_EQ(users[0].cache, eleventh.cache);
  EXPECT_EQ(nullptr, eleventh.cache->GetMemoryBufferAtFileOffset(kBlock));
  EXPECT_EQ("ES", eleventh.calls);
  EXPECT_EQ("S", users[0].calls) << "who loses a cache is not told";
  manager->UpdateMemoryCache(&users[0]);
  EXPECT_EQ(users[1].cache, users[0].cache);
}

TEST_F(FBCMemoryCacheManagerTest, AUserThatRegistersAgainKeepsItsCacheAndIsNotTheNextToLoseIt) {
  RegisterAll();
  FBCMemoryCache* kept = users[0].cache;
  kept->addCache(0);
  manager->UpdateMemoryCache(&users[0]);
  manager->UpdateMemoryCache(&eleventh);
  EXPECT_EQ(kept, users[0].cache);
  EXPECT_NE(nullptr, kept->GetMemoryBufferAtFileOffset(0));
  EXPECT_EQ(users[1].cache, eleventh.cache);
}

TEST_F(FBCMemoryCacheManagerTest, ARemovedCacheIsEmptyAndLentNext) {
  RegisterAll();
  users[4].cache->addCache(0);
  EXPECT_EQ(0u, manager->removeCache(&users[4]));
  EXPECT_EQ(nullptr, manager->cacheItemAtAccessPtr(&users[4], false));
  users[4].cache->addCache(0);  // by someone who does not know yet
  manager->UpdateMemoryCache(&eleventh);
  EXPECT_EQ(users[4].cache, eleventh.cache);
  EXPECT_EQ(nullptr, eleventh.cache->GetMemoryBufferAtFileOffset(0));
  EXPECT_EQ("S", eleventh.calls) << "a free cache is taken from nobody";
}

TEST_F(FBCMemoryCacheManagerTest, AManagerWithoutAPoolLendsNothing) {
  EXPECT_EQ(0u, FBCMemoryCacheManager::DeactivateInstance());
  EXPECT_EQ(0u, FBCMemoryCacheManager::DeactivateInstance());
  EXPECT_EQ(0u, manager->UpdateMemoryCache(&eleventh));
  EXPECT_EQ("E", eleventh.calls);
  EXPECT_EQ(0u, manager->BlockCount());
  FBCMemoryCacheManager::GetInstance()->UpdateMemoryCache(&eleventh);
  EXPECT_EQ("ES", eleventh.calls);
}

unsigned long long ResidentBytes() {
  unsigned long long total = 0;
  unsigned long long resident = 0;
  std::ifstream("/proc/self/statm") >> total >> resident;
  return resident * static_cast<unsigned long long>(::sysconf(_SC_PAGESIZE));
}

TEST_F(FBCMemoryCacheManagerTest, BlocksThatHoldNothingCostNoMemory) {
  FBCMemoryCacheManager::DeactivateInstance();
  const unsigned long long before = ResidentBytes();
  FBCMemoryCacheManager::GetInstance();
  RegisterAll();
  EXPECT_LT(ResidentBytes(), before + 16'000'000) << "of the pool's 40 MiB";
}

}  // namespace
