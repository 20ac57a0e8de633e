#include <algorithm>
#include <chrono>
#include <future>
#include <iostream>
#include <random>
#include <thread>

#include "tests/cache/CacheTestSupport.h"

// A deadlock in these tests is found by the time limit of ctest.

namespace {

constexpr unsigned int kStreamCount = 24;
constexpr unsigned int kReaderCount = 16;
constexpr unsigned long long kFileSize = 12 * kBlock + 321;

class CacheThreadsTest : public CacheTest {
 protected:
  void SetUp() override {
    for (unsigned int i = 0; i < kStreamCount; ++i) paths.push_back(folder.PatternFile(i, kFileSize));
    for (const std::string& path : paths) streams.push_back(OpenStream(path));
  }

  std::vector<std::string> paths;
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

TEST_F(CacheThreadsTest, ManyReadersOfManyStreamsNeverSeeAnotherByte) {
  const char* given = std::getenv("CACHE_TEST_SEED");
  const unsigned long seed = given != nullptr ? std::strtoul(given, nullptr, 10) : std::random_device{}();
  std::cout << "CACHE_TEST_SEED=" << seed << std::endl;
  TestDisk disk;  // slow, so that caches are asked for while others are being read through
  disk.beforePread = [] { std::this_thread::sleep_for(std::chrono::microseconds(100)); };
  std::vector<std::thread> threads;
  const auto start = [&](unsigned int number, int operations, auto operation) {
    threads.emplace_back([=] {
      std::mt19937 random(seed + number);
      for (int i = 0; i < operations; ++i) operation(random, static_cast<unsigned int>(random() % kStreamCount));
    });
  };
  const auto readSomewhere = [](CacheFileStream& stream, unsigned int number, std::mt19937& random) {
    const unsigned long long size = random() % 4 == 0 ? random() % (3 * kBlock) : 1 + random() % 64;
    const unsigned long long offset = random() % kFileSize;
    const auto expected = static_cast<long long>(std::min(size, kFileSize - offset));
    ASSERT_EQ(expected, ReadPattern(stream, number, size, static_cast<long long>(offset)));
  };
  for (unsigned int reader = 0; reader < kReaderCount; ++reader) {
    start(reader, 300, [&](std::mt19937& random, unsigned int i) { readSomewhere(*streams[i], i, random); });
  }
  start(100, 150, [&](std::mt19937& random, unsigned int i) {  // opens and closes
    const StreamPtr stream = OpenStream(paths[i]);
    readSomewhere(*stream, i, random);
    readSomewhere(*stream, i, random);
  });
  start(101, 600, [&](std::mt19937& random, unsigned int i) {  // a host that calls the cache's interface itself
    FBCMemoryCacheManager* manager = FBCMemoryCacheManager::GetInstance();
    if (random() % 8 == 0) manager->removeCache(streams[i].get());
    if (random() % 2 == 0) manager->UpdateMemoryCache(streams[i].get());
    unsigned char byte = PatternAt(70000, i);
    static_cast<void>(streams[i]->ReadFromFile(&byte, 70000, 1));
    static_cast<void>(streams[i]->ReadFromCache(&byte, 70000, 1));
    ASSERT_EQ(PatternAt(70000, i), byte);
    if (random() % 8 == 0) streams[i]->EraseCache();
  });
  start(102, 60, [](std::mt19937&, unsigned int) {
    FBCMemoryCacheManager::DeactivateInstance();
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  });
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
