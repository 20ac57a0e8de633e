#include <benchmark/benchmark.h>

#include <thread>

#include "bench/Suite.h"

namespace bench {
namespace {

using Of = Target::Of;

using OpenClips = std::vector<std::shared_ptr<MXFStream>>;

OpenClips OpenAll(const BenchClip& clip, std::size_t count) {
  OpenClips all;
  for (std::size_t i = 0; i < count; ++i) all.push_back(clip.OpenWithIndexes());
  return all;
}

void ReadFrames(MXFStream& clip, const std::vector<unsigned int>& units) {
  std::vector<unsigned char> buffer(kLargestElement);
  for (const unsigned int unit : units) ReadElements(clip, unit, kPicture, buffer);
}

void ReadNumbers(MXFStream& clip, std::size_t count) {
  ParseMetaData reader(clip.GetStream());
  for (std::size_t i = 0; i < count; ++i) {
    unsigned int number = 0;
    benchmark::DoNotOptimize(reader.GetUInt32(&number));
  }
}

// The same work on each of the clips at once, one thread for each.
template <class Work>
Sample OnThreads(const OpenClips& clips, Work work) {
  return Timed([clips, work] {
    std::vector<std::thread> threads;
    threads.reserve(clips.size());
    for (const auto& clip : clips) threads.emplace_back([&work, &clip] { work(*clip); });
    for (std::thread& thread : threads) thread.join();
  });
}

// `count` threads against one, an operation being the work of one thread.
template <class Work>
Contest Against(const BenchClip& clip, std::size_t count, Work work) {
  return Contest{OnThreads(OpenAll(clip, count), work), static_cast<double>(count), OnThreads(OpenAll(clip, 1), work)};
}

// A clip at a time gets a read that its blocks can answer, for as long as it has them.
template <class Work>
Contest RoundRobin(const BenchClip& clip, Work work) {
  constexpr std::size_t kRounds = 100;
  const auto taking = [work](const OpenClips& clips) {
    return Timed([clips, work] {
      for (std::size_t i = 0; i < kRounds; ++i) {
        for (const auto& each : clips) work(*each);
      }
    });
  };
  return Contest{taking(OpenAll(clip, 11)), 11 * kRounds, taking(OpenAll(clip, 10)), 10 * kRounds};
}

}  // namespace

void AddThreadMeasures(Suite& suite, const Clips& clips) {
  constexpr Target kNearlyTwice = {Of::SpeedUp, 1.8};
  suite.Add({"speed of 2 threads on 2 clips, 4-byte reads", "1 on 1", kNearlyTwice},
            [&clips] { return Against(clips.b, 2, [](MXFStream& clip) { ReadNumbers(clip, 1 << 20); }); });
  suite.Add({"speed of 2 threads on 2 clips, random frames", "1 on 1", kNearlyTwice}, [&clips] {
    return Against(clips.b, 2, [units = RandomUnits(clips.b, 1000)](MXFStream& clip) { ReadFrames(clip, units); });
  });
  suite.Add({"11 clips in turn, 4 bytes that were read before", "10 clips"},
            [&clips] { return RoundRobin(clips.a, [](MXFStream& clip) { ReadNumbers(clip, 1); }); });
  suite.Add({"11 clips in turn, a frame that was read before", "10 clips"},
            [&clips] { return RoundRobin(clips.a, [](MXFStream& clip) { ReadFrames(clip, {300}); }); });
}

}  // namespace bench
