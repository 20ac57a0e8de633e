#include <chrono>
#include <condition_variable>
#include <iostream>
#include <map>
#include <mutex>
#include <random>
#include <thread>

#include "tests/cache/CacheTestSupport.h"
#include "tests/support/AskEverything.h"
#include "tests/support/TestClip.h"

// Threads that do everything at once, each a fixed number of times. Best run under ThreadSanitizer.

namespace {

constexpr unsigned kClips = 24;  // over ten caches
constexpr unsigned kReaders = 16;

// Ends the process when it is not gone in time: nothing else ends a deadlock.
class Watchdog {
 public:
  ~Watchdog() {
    {
      const std::lock_guard guard(m_lock);
      m_isOver = true;
    }
    m_change.notify_all();
    m_thread.join();
  }

 private:
  void Watch() {
    std::unique_lock guard(m_lock);
    if (m_change.wait_for(guard, std::chrono::minutes(4), [this] { return m_isOver; })) return;
    std::cerr << "the threads wait for each other" << std::endl;
    std::abort();
  }

  std::mutex m_lock;
  std::condition_variable m_change;
  bool m_isOver = false;
  std::thread m_thread{&Watchdog::Watch, this};
};

// Threads, each with random numbers of its own; joined, and the dog called off, at the end.
class Crew {
 public:
  Crew() { std::cout << "THREADS_TEST_SEED=" << m_seed << std::endl; }
  ~Crew() {
    for (std::thread& thread : m_threads) thread.join();
  }

  template <class Operation>
  void Start(unsigned threads, int operations, Operation operation) {
    for (; threads > 0; --threads) {
      m_threads.emplace_back([=, seed = m_seed + m_threads.size()] {
        std::mt19937 random(static_cast<std::mt19937::result_type>(seed));
        for (int i = 0; i < operations && !testing::Test::HasFailure(); ++i) operation(random);
      });
    }
  }

 private:
  static unsigned long Seed() {
    const char* given = std::getenv("THREADS_TEST_SEED");
    return given != nullptr ? std::strtoul(given, nullptr, 10) : std::random_device{}();
  }

  const unsigned long m_seed = Seed();
  Watchdog m_dog;
  std::vector<std::thread> m_threads;
};

class ThreadsTest : public CacheTest {};

// Of which no two have the same bytes in the same place.
ClipOptions ClipNumber(unsigned number) {
  ClipOptions options = number % 2 == 0 ? SmallClip() : HeaderIndexClip();
  options.intraBytes = 9000 + 800 * number;
  options.dataBytes = 96;
  return options;
}

void ExpectOwnBytes(const TestClip& clip, CacheFileStream& stream, std::mt19937& random) {
  const std::uint64_t length = clip.truth.length, offset = random() % length;
  Bytes bytes(random() % 4 == 0 ? random() % (3 * kBlock) : 1 + random() % 64, 0xEE);
  const std::size_t expected = std::min<std::size_t>(bytes.size(), length - offset);
  const long long count =
      stream.Read(bytes.data(), bytes.size(), static_cast<long long>(offset), kOxStreamSeekFromStart);
  ASSERT_EQ(static_cast<long long>(expected), count);
  ASSERT_TRUE(std::equal(bytes.begin(), bytes.begin() + count, clip.At(offset))) << "another file's bytes";
}

// A host that calls the cache's interface itself.
void MeddleWithCache(const TestClip& clip, CacheFileStream& stream, std::mt19937& random) {
  FBCMemoryCacheManager* manager = FBCMemoryCacheManager::GetInstance();
  if (random() % 8 == 0) manager->removeCache(&stream);
  if (random() % 2 == 0) manager->UpdateMemoryCache(&stream);
  unsigned char byte = *clip.At(70000);
  static_cast<void>(stream.ReadFromFile(&byte, 70000, 1));
  static_cast<void>(stream.ReadFromCache(&byte, 70000, 1));
  ASSERT_EQ(*clip.At(70000), byte);
  if (random() % 8 == 0) stream.EraseCache();
}

TEST_F(ThreadsTest, ManyReadersOfManyClipsNeverSeeAnotherByte) {
  TestDisk disk;  // slow, so that caches are asked for while others are being read through
  disk.beforePread = [] { std::this_thread::sleep_for(std::chrono::microseconds(100)); };
  std::vector<std::unique_ptr<TestClip>> clips;
  for (unsigned i = 0; i < kClips; ++i) {
    clips.push_back(std::make_unique<TestClip>(ClipNumber(i)));
    ASSERT_EQ(kStatusOK, clips.back()->Open());
  }
  const auto any = [&](std::mt19937& random) -> TestClip& { return *clips[random() % kClips]; };
  const auto anyUnit = [](const TestClip& clip, std::mt19937& random) {
    return static_cast<unsigned>(random() % clip.truth.units);
  };
  Crew crew;
  crew.Start(kReaders, 120, [&](std::mt19937& random) {
    TestClip& clip = any(random);
    const OxSharedPtr<CacheFileStream> stream = clip->GetStream();
    ExpectOwnBytes(clip, *stream, random);
    const unsigned unit = anyUnit(clip, random);
    ASSERT_TRUE(clip.isElementRight(unit, static_cast<unsigned>(random() % clip.truth.ElementCount()))) << unit;
  });
  crew.Start(1, 100, [&](std::mt19937& random) {  // opens and closes
    const TestClip& truth = any(random);
    MXFStream clip(CreateOxString(truth.Path()));
    ASSERT_EQ(kStatusOK, clip.Parse());
    const unsigned unit = anyUnit(truth, random);
    ASSERT_EQ(truth.truth.ElementAt(unit, 1).valueOffset, clip.RangeEssenceData(unit, 1).location);
  });
  crew.Start(1, 600, [&](std::mt19937& random) {
    TestClip& clip = any(random);
    const OxSharedPtr<CacheFileStream> stream = clip->GetStream();
    MeddleWithCache(clip, *stream, random);
  });
  crew.Start(1, 60, [](std::mt19937&) {
    FBCMemoryCacheManager::DeactivateInstance();
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  });
}

// Everything under the host's lock, and without it what needs none, from the first loading of an index on.
TEST_F(ThreadsTest, OneClipAnswersManyThreads) {
  using Numbers = std::map<About, unsigned long long>;
  for (const unsigned number : {0u, 1u}) {
    const ClipOptions options = ClipNumber(number);
    TestClip clip(options);
    const auto ask = [&clip](Numbers& numbers) {
      AskEverything(*clip, [&](const About& about, unsigned long long value) { numbers[about] = value; }, {4, 6, 3});
    };
    Numbers right;
    ASSERT_EQ(kStatusOK, clip.Open());
    ask(right);
    ASSERT_EQ(kStatusOK, clip.Open());
    std::mutex hostsLock;
    Crew crew;
    crew.Start(4, 5, [&](std::mt19937&) {
      const std::lock_guard guard(hostsLock);
      Numbers numbers;
      ask(numbers);
      ASSERT_TRUE(numbers == right);
    });
    crew.Start(4, 60, [&](std::mt19937& random) {
      std::array<unsigned char, 4> bits{};
      OxSharedPtr<OxNumber> state, rate;
      ASSERT_EQ("right", clip.Answer(static_cast<unsigned>(random() % clip.truth.units)));
      ASSERT_EQ(kStatusOK, clip->GetUserBit(bits.data()));
      ASSERT_EQ(options.userBits, bits);
      ASSERT_EQ(kStatusOK, clip->GetImageStabilizer(&state));
      ASSERT_TRUE(state && state->UInt32Value() == 2);
      ASSERT_EQ(kStatusOK, clip->GetVideoBitRate(&rate));
      ASSERT_TRUE(rate && rate->UInt32Value() == options.bitRate);
      const OxSharedPtr<OxArray> segments = clip->GetIndexFromPartition(clip.PackAt(0));
      ASSERT_EQ(number == 0 ? 0u : 8u, segments->Count());
      ASSERT_FALSE(clip->GetStreamFileSequenceInfoAtOffset(0));
    });
  }
}

}  // namespace
