#include <benchmark/benchmark.h>

#include "bench/Suite.h"

namespace bench {
namespace {

using Of = Target::Of;

constexpr std::size_t kLookups = 4096;  // in a round, so short that many are not interrupted
constexpr std::size_t kRounds = 16;     // until the same edit units are asked for again

// Random edit units, a round's share at a time.
class Units {
 public:
  explicit Units(const BenchClip& clip) : m_units(RandomUnits(clip, kRounds * kLookups)) {}

  template <class Ask>
  void AskNext(Ask ask) {
    for (std::size_t i = 0; i < kLookups; ++i) ask(m_units[m_next + i]);
    m_next = (m_next + kLookups) % m_units.size();
  }

 private:
  std::vector<unsigned int> m_units;
  std::size_t m_next = 0;
};

// Asks about random edit units, with every index loaded.
template <class Ask>
Sample AskRandomly(const BenchClip& clip, Ask ask) {
  const std::shared_ptr<MXFStream> stream = clip.OpenWithIndexes();
  return Timed(
      [stream, ask, units = Units(clip)]() mutable { units.AskNext([&](unsigned int unit) { ask(*stream, unit); }); });
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
  return Timed([table, units = Units(clip)]() mutable {
    std::uint64_t sum = 0;  // else the look-ups are optimised away
    units.AskNext([&](unsigned int unit) { sum += table[unit]; });
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
