#include <benchmark/benchmark.h>

#include "bench/Floors.h"
#include "bench/Suite.h"

namespace bench {
namespace {

using Of = Target::Of;

Sample UntilFirstOffset(const BenchClip& clip) {
  return Timed([&clip] {
    unsigned long long offset = 0;
    benchmark::DoNotOptimize(clip.Open()->GetEssenceOffset(0, kPicture, offset));
  });
}

// The file is opened and closed here too.
Sample Blocks(const BenchClip& clip, const std::vector<Range>& ranges) {
  std::size_t largest = 0;
  for (const Range& range : ranges) largest = std::max(largest, range.size);
  return Timed([&clip, ranges, buffer = std::vector<unsigned char>(largest)]() mutable {
    BlockFloor file(clip.Path());
    for (const Range& range : ranges) file.Read(range, buffer.data());
    benchmark::DoNotOptimize(buffer.data());
  });
}

}  // namespace

void AddOpeningMeasures(Suite& suite, const Clips& clips) {
  const std::string open = "open until the first essence offset, ";
  suite.Add({open + "A", "blocks", {Of::Ratio, 6}}, [&clips] {
    return Contest{UntilFirstOffset(clips.a), 1, Blocks(clips.a, clips.a.OpeningRanges())};
  });
  suite.Add({open + "C", "A", {Of::Ratio, 1.5}}, [&clips] {
    return Contest{UntilFirstOffset(clips.c), 1, UntilFirstOffset(clips.a)};
  });
  suite.Add({open + "D", "A", {Of::Ratio, 1.5}}, [&clips] {
    return Contest{UntilFirstOffset(clips.d), 1, UntilFirstOffset(clips.a)};
  });
  suite.Add({open + "D", "blocks"}, [&clips] {
    return Contest{UntilFirstOffset(clips.d), 1, Blocks(clips.d, clips.d.OpeningRanges())};
  });
  suite.Add({open + "E", "blocks"}, [&clips] {
    return Contest{UntilFirstOffset(clips.e), 1, Blocks(clips.e, clips.e.OpeningRanges())};
  });
  suite.Add({"open C and load every index", "blocks", {Of::Ratio, 1.2}}, [&clips] {
    return Contest{Timed([&clips] { benchmark::DoNotOptimize(clips.c.OpenWithIndexes()); }), 1,
                   Blocks(clips.c, clips.c.OpeningAndIndexRanges())};
  });
  suite.Add({"open F, the crowded header", "blocks", {Of::Cost, 50e-3}}, [&clips] {
    return Contest{Timed([&clips] { benchmark::DoNotOptimize(clips.f.Open()); }), 1,
                   Blocks(clips.f, clips.f.OpeningRanges())};
  });
}

}  // namespace bench
