#include <future>
#include <thread>

#include "tests/cache/CacheTestSupport.h"

// A deadlock in these tests is found by the time limit of ctest.

namespace {

constexpr unsigned int kStreamCount = 24;
constexpr unsigned long long kFileSize = 2 * kBlock;

class CacheThreadsTest : public CacheTest {
 protected:
  void SetUp() override {
    for (unsigned int i = 0; i < kStreamCount; ++i) streams.push_back(OpenPattern(i, kFileSize));
  }

  std::vector<StreamPtr> streams;
};

// Runs `meanwhile` while a read of file 0 waits for its disk; that read must still deliver its own bytes.
template <class Meanwhile>
void DuringARead(CacheFileStream& stream, Meanwhile meanwhile) {
  std::promise<void> isReading;
  std::promise<void> mayGoOn;
  std::atomic<bool> isFirst{true};
  TestDisk disk;
  disk.beforePread = [&] {
    if (!isFirst.exchange(false)) return;
    isReading.set_value();
    mayGoOn.get_future().wait();
  };
  std::thread reader([&stream] { EXPECT_EQ(100'000, ReadPattern(stream, 0, 100'000, 50)); });
  isReading.get_future().wait();
  meanwhile();
  mayGoOn.set_value();
  reader.join();
}

TEST_F(CacheThreadsTest, ARunningReadOutlivesThePool) {
  DuringARead(*streams[0], [this] {
    FBCMemoryCacheManager::DeactivateInstance();
    EXPECT_EQ(100, ReadPattern(*streams[1], 1, 100, 0));
  });
  EXPECT_EQ(100, ReadPattern(*streams[0], 0, 100, 0));
}

TEST_F(CacheThreadsTest, ACacheThatIsBeingReadThroughIsNotTakenWhileAnotherIsIdle) {
  DuringARead(*streams[0], [this] {
    for (unsigned int i = 1; i < kStreamCount; ++i) EXPECT_EQ(100, ReadPattern(*streams[i], i, 100, 0));
  });
}

TEST_F(CacheThreadsTest, TheOrderOfUseHoldsAcrossThreads) {
  TestDisk disk;
  disk.beforePread = [] {};
  const auto read = [this](unsigned int i) {  // each on a thread of its own, one after the other
    std::thread([&] { EXPECT_EQ(4, ReadPattern(*streams[i], i, 4, 0)); }).join();
  };
  for (const unsigned int i : {0u, 1u, 2u, 3u, 4u, 5u, 6u, 7u, 8u, 9u, 1u, 0u, 3u}) read(i);
  EXPECT_EQ(10, disk.preads);
  for (const unsigned int newcomer : {10u, 11u, 12u}) read(newcomer);  // take the caches of 2, 4 and 5
  for (const unsigned int i : {0u, 1u, 3u, 6u, 7u, 8u, 9u}) read(i);
  EXPECT_EQ(13, disk.preads);
}

}  // namespace
