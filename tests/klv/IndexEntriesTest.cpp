#include "klv/IndexEntries.h"

#include <gtest/gtest.h>

#include "tests/support/Bytes.h"

namespace {

constexpr unsigned long long kMost = ~0ULL;

// Every width that the numbers can take gives back the numbers.
TEST(IndexEntriesTest, NumbersComeBackWhateverTheirSize) {
  for (const unsigned long long stream : {0ULL, 0xFFULL, 0x100ULL, 0xFFFFFFULL, 0x1000000ULL, 1ULL << 56, kMost}) {
    for (const unsigned int slice : {0u, 0xFFu, 0x100u, 0xFFFFu, 0x10000u, 0xFFFFFFFFu}) {
      for (const unsigned long long first : {0ULL, 1ULL, kMost}) {
        Bytes stored = Bytes{-1, -2, 0xC3}.U64(first).U32(slice).U32(0);
        stored.Raw(Bytes{1, 2, 3}.U64(stream).U32(7).U32(slice));
        IndexEntries entries;
        entries.Assign(stored.Data(), 2, 2);
        EXPECT_EQ(2u, entries.Count());
        EXPECT_EQ(first, entries.StreamOffset(0));
        EXPECT_EQ(stream, entries.StreamOffset(1));
        EXPECT_TRUE(entries.SliceOffset(0, 0) == slice && entries.SliceOffset(1, 1) == slice) << slice;
        EXPECT_TRUE(entries.SliceOffset(0, 1) == 0 && entries.SliceOffset(1, 0) == 7) << slice;
        EXPECT_TRUE(entries.TemporalOffset(0) == -1 && entries.KeyFrameOffset(0) == -2 && entries.Flags(0) == 0xC3);
        EXPECT_TRUE(entries.TemporalOffset(1) == 1 && entries.KeyFrameOffset(1) == 2 && entries.Flags(1) == 3);
      }
    }
  }
}

}  // namespace
