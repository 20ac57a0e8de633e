#include <limits>

#include "foundation/OxMemoryStream.h"
#include "tests/support/TestClip.h"

namespace {

constexpr long long kMost = std::numeric_limits<long long>::max();
constexpr long long kLeast = std::numeric_limits<long long>::min();

// That of a written clip, with another start and duration.
OxSharedPtr<IndexTableSegment> Segment(long long start, long long duration) {
  ClipOptions options = SmallClip();
  options.partitionUnits = {1};
  TestClip clip(options);
  clip.Patch(clip.ItemAt("IndexTableSegment", 0x3F0C) + 4, static_cast<std::uint64_t>(start), 8);
  clip.Patch(clip.ItemAt("IndexTableSegment", 0x3F0D) + 4, static_cast<std::uint64_t>(duration), 8);
  EXPECT_EQ(kStatusOK, clip.Open());
  return clip->GetIndexFromPartition(clip.PackAt(2))->LastObject();
}

class BodyPartitionArrayTest : public testing::Test {
 protected:
  BodyPartitionArrayTest() { AddPartitions(); }
  void AddPartitions() {  // two, both said to be at 0
    array.Clear();
    array.AddBack(0);
    array.AddBack(0);
  }
  // "partition/segment" of an edit unit, or "none".
  std::string PlaceOf(long long unit) const {
    unsigned index = 0, number = 0;
    if (!array.GetContainIndexTableSegment(unit, index, number)) return "none";
    return std::to_string(index) + "/" + std::to_string(number);
  }

  BodyPartitionArray array;
};

TEST_F(BodyPartitionArrayTest, OnlyPartitionsOfTheEssenceStreamAreTakenFromARandomIndex) {
  unsigned char bytes[4 * 12 + 4] = {};  // body SID and offset of each partition, then the overall length
  bytes[12 + 3] = bytes[24 + 3] = 2;
  bytes[12 + 11] = 50, bytes[24 + 11] = 90;
  OxSharedPtr<RandomIndexPack> index(new RandomIndexPack);
  index->SetLength(sizeof bytes);
  ASSERT_EQ(kStatusOK, index->Import(OxSharedPtr<OxStream>(new OxMemoryStream(bytes, sizeof bytes, false)), 0));
  EXPECT_EQ(kStatusNoInput, array.SetFromRandomIndexPack({}));
  EXPECT_EQ(kStatusOK, array.SetFromRandomIndexPack(index));
  unsigned long long first = 0, second = 0;
  EXPECT_TRUE(array.Count() == 2 && array.FileOffsetAtIndex(0, first) && array.FileOffsetAtIndex(1, second));
  EXPECT_EQ(std::pair(50ull, 90ull), std::pair(first, second));
}

TEST_F(BodyPartitionArrayTest, AnEditUnitIsFoundByTheLengthOfTheFirstSegment) {
  ASSERT_EQ(kStatusOK, array.SetIndexTableSegment(0, 0, Segment(0, 300)));
  ASSERT_EQ(kStatusOK, array.SetIndexTableSegment(0, 1, Segment(300, 300)));
  EXPECT_EQ(kStatusRefused, array.SetIndexTableSegment(0, 0, Segment(5, 9))) << "the number is taken";
  EXPECT_EQ("0/0", PlaceOf(299));
  EXPECT_EQ("0/1", PlaceOf(450));
  EXPECT_EQ("none", PlaceOf(600));
  EXPECT_EQ("none", PlaceOf(-1));
}

TEST_F(BodyPartitionArrayTest, TheEarliestPartitionDecidesEvenWhenIncomplete) {
  for (const unsigned i : {0u, 1u}) ASSERT_EQ(kStatusOK, array.SetIndexTableSegment(i, 0, Segment(5, 10)));
  TestClip clip(SmallClip());
  ASSERT_EQ(kStatusOK, clip.Open());
  const OxSharedPtr<PartitionPack> pack = clip->GetHeaderPartitionPack();
  ASSERT_EQ(kStatusOK, array.SetBodyPartitionData(1, pack));
  unsigned char flags = 0;
  EXPECT_EQ("0/0", PlaceOf(5));
  EXPECT_FALSE(array.GetFlags(5, flags));
  ASSERT_EQ(kStatusOK, array.SetBodyPartitionData(0, pack));
  EXPECT_TRUE(array.GetFlags(5, flags));
}

TEST_F(BodyPartitionArrayTest, NumbersThatCannotBeComputedMeanNotInThisPartition) {
  const struct {
    long long start, duration, unit;
    const char* place;
  } kRows[] = {{100, 10, 85, "none"},      // number -1 must not pass for 0xFFFFFFFF, which is there
               {0, 1, 1LL << 32, "none"},  // nor 2^32 for 0
               {0, 0, 0, "none"},
               {0, -1, kLeast, "none"},              // -2^63 / -1
               {kLeast, 10, 1, "none"},              // 1 + 2^63
               {kMost - 5, 100, kMost - 1, "0/0"}};  // start + duration is beyond 2^63
  for (const auto& row : kRows) {
    AddPartitions();
    ASSERT_EQ(kStatusOK, array.SetIndexTableSegment(0, 0, Segment(row.start, row.duration)));
    ASSERT_EQ(kStatusOK, array.SetIndexTableSegment(0, 0xFFFFFFFF, Segment(80, 10)));
    ASSERT_EQ(kStatusOK, array.SetIndexTableSegment(1, 0, Segment(3, 1)));
    EXPECT_EQ(row.place, PlaceOf(row.unit)) << row.start << "+" << row.duration;
    EXPECT_EQ("1/0", PlaceOf(3)) << "the next partition answers";
  }
}

}  // namespace
