#include <benchmark/benchmark.h>

#include "bench/Floors.h"
#include "bench/Suite.h"

namespace bench {
namespace {

using Of = Target::Of;
using Buffer = std::vector<unsigned char>;

constexpr std::size_t kRandomFrames = 500;  // in a round
constexpr std::size_t kNumbers = 32768;     // in a round: the first 128 KiB

Sample ReadEach(const BenchClip& clip, const std::vector<unsigned int>& units, unsigned int first) {
  const std::shared_ptr<MXFStream> stream = clip.OpenWithIndexes();
  return Timed([stream, units, first, buffer = Buffer(kLargestElement)]() mutable {
    for (const unsigned int unit : units) ReadElements(*stream, unit, first, buffer);
  });
}

template <class Floor>
Sample ReadRanges(const BenchClip& clip, const std::vector<Range>& ranges) {
  return Timed([file = std::make_shared<Floor>(clip.Path()), ranges, buffer = Buffer(kLargestElement)]() mutable {
    for (const Range& range : ranges) file->Read(range, buffer.data());
  });
}

// The elements from `first` on of the edit units, which are in no order or in file order.
template <class Floor>
Contest Reading(const BenchClip& clip, const std::vector<unsigned int>& units, unsigned int first) {
  const auto count = static_cast<double>(units.size());
  return Contest{ReadEach(clip, units, first), count, ReadRanges<Floor>(clip, clip.Elements(units, first)), count};
}

Contest ReadNumbers(const OxSharedPtr<OxStream>& stream) {
  const auto reader = std::make_shared<ParseMetaData>(stream);
  return Contest{Timed([reader] {
                   static_cast<void>(reader->SetOffset(0, kOxStreamSeekFromStart));
                   for (std::size_t i = 0; i < kNumbers; ++i) {
                     unsigned int number = 0;
                     benchmark::DoNotOptimize(reader->GetUInt32(&number));
                   }
                 }),
                 kNumbers};
}

}  // namespace

void AddEssenceMeasures(Suite& suite, const Clips& clips) {
  const BenchClip& b = clips.b;
  const BenchClip& c = clips.c;
  const std::string inOrder = "an edit unit of B in order, all elements";
  suite.Add({inOrder, "blocks", {Of::Ratio, 1.05}}, [&b] { return Reading<BlockFloor>(b, EveryUnit(b), kSystemItem); });
  suite.Add({inOrder, "pread"}, [&b] { return Reading<PreadFloor>(b, EveryUnit(b), kSystemItem); });
  suite.Add({"random whole frame, B", "blocks", {Of::Ratio, 1.0}},
            [&b] { return Reading<BlockFloor>(b, RandomUnits(b, kRandomFrames), kPicture); });
  suite.Add({"random whole frame, C", "blocks", {Of::Ratio, 1.0}},
            [&c] { return Reading<BlockFloor>(c, RandomUnits(c, kRandomFrames), kPicture); });
}

void AddSmallReadMeasures(Suite& suite, const Clips& clips) {
  suite.Add({"4-byte read over the file stream", "", {Of::Cost, 60e-9}},
            [&clips] { return ReadNumbers(clips.b.Open()->GetStream()); });
  suite.Add({"4-byte read over a memory stream", "", {Of::Cost, 8e-9}}, [] {
    const Buffer bytes(4 * kNumbers);
    return ReadNumbers(OxSharedPtr<OxStream>(new OxMemoryStream(bytes.data(), bytes.size(), true)));
  });
}

}  // namespace bench
