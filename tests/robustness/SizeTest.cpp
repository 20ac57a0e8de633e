#include "tests/cache/CacheTestSupport.h"
#include "tests/support/Allocations.h"
#include "tests/support/TestClip.h"

// Clips of any size, in sparse files: what is read, and taken of memory, is in proportion to the answer.

namespace {

using clipwriter::Essence;

constexpr std::uint64_t kGiB = 1 << 30;

// Pictures so large that a few edit units reach far.
ClipOptions LargePictures(std::vector<std::uint32_t> partitionUnits, std::uint32_t bytes) {
  ClipOptions options;
  options.partitionUnits = std::move(partitionUnits);
  options.intraBytes = options.predictedBytes = options.bidirectionalBytes = bytes;
  options.essence = Essence::Keys;
  return options;
}

ClipOptions ManyUnits(std::vector<std::uint32_t> partitionUnits) {
  ClipOptions options = SmallClip();
  options.recordFields = false;
  options.partitionUnits = std::move(partitionUnits);
  options.essence = Essence::Holes;
  return options;
}

ClipOptions MillionInHeader() {
  ClipOptions options = ManyUnits({1'000'000});
  options.minorVersion = 3;
  options.index = clipwriter::IndexLayout::InHeader;
  return options;
}

// The entry of an edit unit, and the places of its elements; sound, which is small, is read as well.
void ExpectRight(MXFStream& clip, const clipwriter::Clip& truth, unsigned unit) {
  unsigned char flags = 0;
  EXPECT_TRUE(clip.GetFlagsAtIndex(unit, flags)) << unit;
  EXPECT_EQ(truth.EntryAt(unit).flags, flags) << unit;
  for (unsigned element = 0; element < truth.ElementCount(); ++element) {
    const clipwriter::Element place = truth.ElementAt(unit, element);
    unsigned long long offset = 0;
    EXPECT_EQ(kStatusOK, clip.GetEssenceOffset(unit, element, offset)) << unit;
    EXPECT_EQ(place.offset, offset) << unit;
    const bool isHole = truth.options.essence == Essence::Holes && unit != 0 && unit + 1 != truth.units;
    if (isHole || place.kind == clipwriter::ElementKind::System) continue;
    const _OxRange range = clip.RangeEssenceData(unit, element);
    EXPECT_EQ(std::tie(place.valueOffset, place.valueLength), std::tie(range.location, range.length)) << unit;
    Bytes buffer(8192, 0xEE);
    const auto count = place.valueLength <= buffer.size() ? place.valueLength : 0;
    EXPECT_EQ(count, clip.ReadEssenceData(unit, element, buffer.data(), 8192)) << unit;
  }
}

// Five blocks of 64 KiB open a clip and answer once, two more are read for each answer far away.
TEST(SizeTest, WhatIsReadIsInProportionToTheAnswer) {
  const struct {
    const char* name;
    ClipOptions options;
    std::uint64_t length;  // at least
  } kRows[] = {
      {"essence beyond 4 GiB", LargePictures({100}, 64 << 20), 6 * kGiB},
      {"partitions beyond 1 TiB", LargePictures({200, 200, 150}, 3'000'000'000), 1500 * kGiB},
      {"a million edit units", ManyUnits(std::vector<std::uint32_t>(250, 4000)), 2 * kGiB},
      {"a million in the header", MillionInHeader(), 2 * kGiB},
      {"10,000 body partitions", ManyUnits(std::vector<std::uint32_t>(10'000, 1)), 20 << 20},
  };
  const ScratchFolder folder;
  for (const auto& row : kRows) {
    const std::string path = folder.Path("clip");
    const clipwriter::Clip truth = clipwriter::WriteClipFile(row.options, path);
    EXPECT_LE(row.length, truth.length) << row.name;
    const CountedReads reads;
    FBCMemoryCacheManager::GetInstance();  // the pool's memory is taken once
    const AllocationPeak peak;
    MXFStream clip(CreateOxString(path));
    ASSERT_EQ(kStatusOK, clip.Parse()) << row.name;
    ExpectRight(clip, truth, 0);
    EXPECT_GE(5u, CountedReads::s_blocks) << row.name;
    CountedReads::s_blocks = 0;
    const auto units = static_cast<unsigned>(truth.units);
    const unsigned asked[] = {units - 1, units / 2, units / 3, units - 2, 1};
    for (const unsigned unit : asked) ExpectRight(clip, truth, unit);
    EXPECT_GE(2u * 5, CountedReads::s_blocks) << row.name;
    EXPECT_GT(2u << 20, peak.Bytes()) << row.name;
    unsigned char flags = 0;
    EXPECT_FALSE(clip.GetFlagsAtIndex(units, flags)) << row.name;
  }
}

}  // namespace
