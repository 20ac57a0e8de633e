#include "tests/support/Allocations.h"
#include "tests/support/TestClip.h"

// What an answer costs, in exact counts that are the same on every machine: reads of the file, blocks of 64 KiB read,
// and memory taken. Whoever changes one of these numbers should know why.

namespace {

// Their essence is holes of realistic size, so that even a partition of a dozen edit units is longer than a block.
ClipOptions ClipOf(unsigned partitions, unsigned unitsEach, clipwriter::Essence essence) {
  ClipOptions options;
  options.partitionUnits.assign(partitions, unitsEach);
  options.essence = essence;
  return options;
}
ClipOptions LongPartitions() { return ClipOf(3, 200, clipwriter::Essence::Keys); }
ClipOptions ManyPartitions() { return ClipOf(50, 12, clipwriter::Essence::Keys); }
ClipOptions SparseClip() { return ClipOf(1000, 2, clipwriter::Essence::Holes); }

// Tail and header of the file; then the first partition, when it is not in the header's block, and the index behind it.
TEST(CostTest, OpeningReadsThreeBlocksHoweverManyPartitionsThereAre) {
  for (const ClipOptions& options : {LongPartitions(), ManyPartitions(), SparseClip()}) {
    TestClip clip(options);
    const CountedReads reads;
    ASSERT_EQ(kStatusOK, clip.Open());
    unsigned long long offset = 0;
    ASSERT_EQ(kStatusOK, clip->GetEssenceOffset(0, 1, offset));
    EXPECT_EQ(3, CountedReads::s_count);
    EXPECT_EQ(3u, CountedReads::s_blocks);
  }
}

// Every body partition and the footer begin in a block of their own, which is read once.
TEST(CostTest, LoadingEveryIndexReadsTheBlockOfEachPartitionOnce) {
  for (const bool isUpwards : {true, false}) {
    TestClip clip(ManyPartitions());
    const CountedReads reads;
    ASSERT_EQ(kStatusOK, clip.Open());
    const auto units = static_cast<unsigned>(clip.truth.units);
    for (unsigned i = 0; i < units; ++i) {
      unsigned long long offset = 0;
      ASSERT_EQ(kStatusOK, clip->GetEssenceOffset(isUpwards ? i : units - 1 - i, 1, offset));
    }
    EXPECT_EQ(51, CountedReads::s_count);
    EXPECT_EQ(51u, CountedReads::s_blocks);
  }
}

TEST(CostTest, ALookUpTakesNoMemoryOnceItsIndexIsLoaded) {
  for (const ClipOptions& options : {ManyPartitions(), HeaderIndexClip()}) {
    TestClip clip(options);
    ASSERT_EQ(kStatusOK, clip.Open());
    for (const bool isLoaded : {false, true}) {
      const unsigned long long before = AllocationCount();
      for (unsigned unit = 0; unit < clip.truth.units; ++unit) {
        unsigned long long offset = 0;
        signed char temporal = 0, key = 0;
        unsigned char flags = 0;
        ASSERT_EQ(kStatusOK, clip->GetEssenceOffset(unit, 3, offset));
        ASSERT_TRUE(clip->GetEditUnitInfo(unit, temporal, key, flags));
        ASSERT_EQ(4u, clip->GetHeaderMetadata()->TrackCount(0));
      }
      EXPECT_EQ(isLoaded, AllocationCount() == before) << AllocationCount() - before;
    }
  }
}

}  // namespace
