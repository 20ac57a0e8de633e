#include <benchmark/benchmark.h>

#include "bench/Suite.h"

namespace bench {
namespace {

using Of = Target::Of;

constexpr std::size_t kLookups = 65536;  // in a round

// Asks about random edit units, with every index loaded.
template <class Ask>
Sample AskRandomly(const BenchClip& clip, Ask ask) {
  const std::shared_ptr<MXFStream> stream = clip.OpenWithIndexes();
  return Timed([stream, ask, units = RandomUnits(clip, kLookups)] {
    for (const unsigned int unit : units) ask(*stream, unit);
  });
}

Sample AskOffsets(const BenchClip& clip) {
  return AskRandomly(clip, [](MXFStream& stream, unsigned int unit) {
    unsigned long long offset = 0;
    benchmark::DoNotOptimize(stream.GetEssenceOffset(unit, kPicture, offset));
    benchmark::DoNotOptimize(offset);
  });
}

Sample AskInfos(const BenchClip& clip) {
  return AskRandomly(clip, [](MXFStream& stream, unsigned int unit) {
    signed char temporal = 0;
    signed char key = 0;
    unsigned char flags = 0;
    benchmark::DoNotOptimize(stream.GetEditUnitInfo(unit, temporal, key, flags));
    benchmark::DoNotOptimize(temporal + key + flags);
  });
}

// The floor: offsets in an array.
Sample LookUpInTable(const BenchClip& clip) {
  std::vector<std::uint64_t> table(clip.Units());
  for (unsigned int unit = 0; unit < clip.Units(); ++unit) table[unit] = unit * std::uint64_t{100000};
  return Timed([table, units = RandomUnits(clip, kLookups)] {
    std::uint64_t sum = 0;  // else the look-ups are optimised away
    for (const unsigned int unit : units) sum += table[unit];
    benchmark::DoNotOptimize(sum);
  });
}

}  // namespace

void AddLookupMeasures(Suite& suite, const Clips& clips) {
  const struct {
    const char* name;
    const BenchClip& clip;
  } all[] = {{"A", clips.a}, {"B", clips.b}, {"C", clips.c}, {"D", clips.d}, {"E", clips.e}};
  for (const auto& [name, clip] : all) {
    suite.Add({std::string("essence offset of a random edit unit, ") + name, "memory table", {Of::Cost, 60e-9}},
              [&clip = clip] {
                return Contest{AskOffsets(clip), kLookups, LookUpInTable(clip), kLookups};
              });
  }
  suite.Add({"essence offset of a random edit unit, D", "A", {Of::Ratio, 1.5}}, [&clips] {
    return Contest{AskOffsets(clips.d), kLookups, AskOffsets(clips.a), kLookups};
  });
  for (const auto& [name, clip] : all) {
    suite.Add({std::string("flags and offsets of a random edit unit, ") + name, "memory table", {Of::Cost, 60e-9}},
              [&clip = clip] {
                return Contest{AskInfos(clip), kLookups, LookUpInTable(clip), kLookups};
              });
  }
}

}  // namespace bench
