#include "tests/support/TestClip.h"

namespace {

using clipwriter::RandomIndex;

// The n-th packet of an index area claims more than the file has.
void Overrun(TestClip& clip, std::size_t partition, unsigned n) {
  std::uint64_t packet = clip.truth.partitions.at(partition).indexOffset;
  while (n-- > 0) packet = clip.NextPacket(packet);
  clip.PatchLength(packet, kPastEnd);
}
void SetDuration(TestClip& clip, unsigned segment, std::uint64_t duration) {
  clip.Patch(clip.ItemAt("IndexTableSegment", 0x3F0D, segment) + 4, duration, 8);
}

// Each edit unit with an index has the entry, offsets, sizes and bytes that were written; damage takes away no more
// than it must, and five units more than there are get asked for then. Each is asked for twice: upwards and downwards,
// so that the first guess of a partition is missed on both sides.
TEST(IndexAndEssenceTest, EditUnitsAreAnsweredAsWritten) {
  constexpr unsigned kAll = 10000;
  const struct {
    const char* name;
    void (*adjust)(ClipOptions&);
    void (*damage)(TestClip&);
    unsigned end = kAll, first = 0;  // of the units that have an index
  } kRows[] = {
      {"as the cameras write", nullptr, nullptr},
      {"partitions of very unequal length",
       [](auto& o) {
         o.partitionUnits = {1, 2, 30, 1, 1};
       },
       nullptr},
      {"a data element", [](auto& o) { o.dataBytes = 96; }, nullptr},
      {"no system item", [](auto& o) { o.systemItem = false; }, nullptr},
      {"no package metadata", [](auto& o) { o.packageMetadata = false; }, nullptr},
      {"no slices", [](auto& o) { o.slices = 0, o.predictedBytes = o.bidirectionalBytes = o.intraBytes; }, nullptr},
      {"a slice for each sound element", [](auto& o) { o.slices = 2, o.dataBytes = 96; }, nullptr},
      {"the slice count under 3F0E", [](auto& o) { o.slices = 2, o.tag3F0E = o.slices; }, nullptr},
      {"intra frames only", [](auto& o) { o.gopLength = o.groupLength = 1; }, nullptr},
      {"the longest GOP",
       [](auto& o) {
         o.gopLength = 128, o.partitionUnits = {100, 60};
       },
       nullptr},
      {"segments before the one that counts", [](auto& o) { o.staleSegments = 2; }, nullptr},
      {"a random index of wrong length", [](auto& o) { o.randomIndex = RandomIndex::WrongLength; }, nullptr},
      {"a random index without the header", [](auto& o) { o.randomIndex = RandomIndex::WrongFirst; }, nullptr},
      {"a header index of one segment", [](auto& o) { o = HeaderIndexClip(), o.segmentUnits = 0; }, nullptr},
      {"a header index of eight", [](auto& o) { o = HeaderIndexClip(); }, nullptr},
      {"header: an overrun behind", [](auto& o) { o = HeaderIndexClip(); }, [](auto& c) { Overrun(c, 0, 8); }},
      {"header: an overrun", [](auto& o) { o = HeaderIndexClip(); }, [](auto& c) { Overrun(c, 0, 1); }, 10},
      {"header: duration 0", [](auto& o) { o = HeaderIndexClip(); }, [](auto& c) { SetDuration(c, 0, 0); }, 0},
      // The footer, number 4, holds the index of the last three units, partition 3 that of the twelve before.
      {"index bytes beyond the file", nullptr, [](auto& c) { c.PatchPack(4, kIndexByteCount, 1ull << 40); }},
      {"index bytes beyond 64 bits", nullptr, [](auto& c) { c.PatchPack(4, kIndexByteCount, ~0ull); }},
      {"one index byte", nullptr, [](auto& c) { c.PatchPack(4, kIndexByteCount, 1); }},
      {"no index bytes", nullptr, [](auto& c) { c.PatchPack(4, kIndexByteCount, 0); }, 22},
      {"an overrun behind the segment", nullptr, [](auto& c) { Overrun(c, 4, 1); }},
      {"an overrun of the segment", nullptr, [](auto& c) { Overrun(c, 4, 0); }, 22},
      {"a segment of duration 0", nullptr, [](auto& c) { SetDuration(c, 2, 0); }, 22},
      {"a segment of negative duration", nullptr, [](auto& c) { SetDuration(c, 2, ~0ull); }, 22},
      {"a partition elsewhere", nullptr, [](auto& c) { c.PatchPack(3, kThisPartition, 1); }, 10},
      // Without a random index partitions are found from the footer backwards, as far as the links lead.
      {"no random index", WithoutRandomIndex, nullptr},
      {"links in a circle", WithoutRandomIndex, [](auto& c) { c.PatchPack(2, kPrevious, c.PackAt(4)); }, kAll, 10},
      {"a link to no partition", WithoutRandomIndex, [](auto& c) { c.PatchPack(2, kPrevious, 1); }, kAll, 10},
      {"a link beyond 64 bits", WithoutRandomIndex, [](auto& c) { c.PatchPack(3, kPrevious, ~0ull); }, kAll, 22},
      {"another stream", WithoutRandomIndex, [](auto& c) { c.PatchPack(1, kBodySid, 3); }, kAll, 10},
      {"no footer known", WithoutRandomIndex, [](auto& c) { c.PatchPack(0, kFooter, 0); }, 0},
  };
  for (const auto& row : kRows) {
    ClipOptions options = SmallClip();
    if (row.adjust) row.adjust(options);
    const auto units = static_cast<int>(clipwriter::Clip(options).units);
    const int asked = row.damage ? units + 5 : units;
    options.duration = asked;
    TestClip clip(options);
    if (row.damage) row.damage(clip);
    for (const bool isUpwards : {true, false}) {
      if (isUpwards || !row.damage) {
        ASSERT_EQ(kStatusOK, clip.Open()) << row.name;
      }
      for (int i = 0; i < asked; ++i) {
        const auto unit = static_cast<unsigned>(isUpwards ? i : asked - 1 - i);
        const bool isIndexed = unit >= row.first && unit < row.end && unit < clip.truth.units;
        ASSERT_EQ(isIndexed ? "right" : "none", clip.Answer(unit)) << row.name << ", edit unit " << unit;
      }
    }
  }
}

TEST(IndexAndEssenceTest, ALoadedSegmentAnswersWithoutReadingTheFile) {
  for (const ClipOptions& options : {SmallClip(), HeaderIndexClip()}) {
    TestClip clip(options);
    ASSERT_EQ(kStatusOK, clip.Open());
    unsigned char flags = 0;
    unsigned long long offset = 0;
    ASSERT_TRUE(clip->GetFlagsAtIndex(3, flags));
    const CountedReads reads;
    EXPECT_EQ(kStatusOK, clip->GetEssenceOffset(9, 1, offset));
    EXPECT_FALSE(clip->GetFlagsAtIndex(static_cast<unsigned>(clip.truth.units), flags)) << "beyond the clip";
    EXPECT_EQ(0, CountedReads::s_count);
    EXPECT_TRUE(clip->GetFlagsAtIndex(10, flags));
    EXPECT_GT(CountedReads::s_count, 0);
  }
}

// Once the second segment has told the distance, segment 6 is found although those before it are damaged.
TEST(IndexAndEssenceTest, AHeaderIndexIsJumpedIntoByByteCount) {
  TestClip clip(HeaderIndexClip());
  for (unsigned n = 2; n < 6; ++n) clip.Patch(clip.PacketAt("IndexTableSegment", n) + 20, 0, 4);
  ASSERT_EQ(kStatusOK, clip.Open());
  EXPECT_EQ("right", clip.Answer(63));
  EXPECT_EQ("none", clip.Answer(59));
  EXPECT_EQ("right", clip.Answer(19));
}

TEST(IndexAndEssenceTest, AnElementThatDoesNotExistSpoilsNoLaterLookUp) {
  for (const ClipOptions& options : {SmallClip(), HeaderIndexClip()}) {
    TestClip clip(options);
    ASSERT_EQ(kStatusOK, clip.Open());
    unsigned long long offset = 7;
    for (const unsigned unit : {0u, 1u, 12u, 13u, 0u, 24u}) {
      EXPECT_EQ(kStatusUnreadable, clip->GetEssenceOffset(unit, clip.truth.ElementCount(), offset));
    }
    EXPECT_EQ(7u, offset);
    for (unsigned unit = 0; unit < clip.truth.units; ++unit) EXPECT_EQ("right", clip.Answer(unit)) << unit;
  }
}

// Else the last partition's segment would pass for that of the first.
TEST(IndexAndEssenceTest, AnIndexEndsWhereTheNextPartitionBegins) {
  TestClip clip(SmallClip());
  clip.PatchPack(2, kIndexByteCount, 1ull << 40);
  ASSERT_EQ(kStatusOK, clip.Open());
  EXPECT_EQ("right", clip.Answer(0));
}

// 221 partitions of one unit that claim 2,431: the first guess for a unit is partition unit / 11.
TEST(IndexAndEssenceTest, SteppingEndsAfterAHundredPartitions) {
  ClipOptions options = SmallClip();
  options.partitionUnits.assign(221, 1);
  options.duration = 221 * 11;
  TestClip clip(options);
  ASSERT_EQ(kStatusOK, clip.Open());
  EXPECT_EQ(kStatusOK, clip->ReadIndexTable(109)) << "from 9 on, partition 109 is one too far";
  EXPECT_EQ("none", clip.Answer(109));
  EXPECT_EQ("right", clip.Answer(108));
  EXPECT_EQ(kStatusUnreadable, clip->ReadIndexTable(2430)) << "beyond the last partition";
}

// Of the system item the pack alone, when the set behind it does not fit.
TEST(IndexAndEssenceTest, WhatDoesNotFitTheBufferIsNotCopied) {
  TestClip clip(SmallClip());
  ASSERT_EQ(kStatusOK, clip.Open());
  const auto whole = static_cast<unsigned>(clip.truth.ElementBytes(0, 0).size());
  for (const auto& [element, size, expected] :
       {std::tuple(0u, whole, whole), {0u, whole - 1, 57u}, {0u, 57u, 57u}, {0u, 56u, 0u}, {1u, 1699u, 0u}}) {
    Bytes buffer(whole + 1700, 0xEE), written = clip.truth.ElementBytes(0, element);
    EXPECT_EQ(expected, clip->ReadEssenceData(0, element, buffer.data(), size));
    written.resize(expected);
    written.resize(buffer.size(), 0xEE);
    EXPECT_EQ(written, buffer) << element << ", " << size;
  }
  EXPECT_EQ(0u, clip->ReadEssenceData(0, 1, nullptr, 1700));
}

// As at the end of a recording that was cut.
TEST(IndexAndEssenceTest, AnElementThatRunsPastTheEndDeliversNothingOfAnotherUnit) {
  ClipOptions options = SmallClip();
  options.dataBytes = 96;
  TestClip clip(options);
  clip.PatchLength(clip.truth.ElementAt(24, 1).offset, kPastEnd);            // the picture
  clip.PatchLength(clip.truth.ElementAt(23, 0).offset, kPastEnd);            // the system metadata pack
  clip.PatchLength(clip.truth.ElementAt(22, 0).offset + 20 + 57, kPastEnd);  // the set behind it
  clip.Patch(clip.truth.ElementAt(21, 1).offset, 0x060E2B3401010102, 8);     // a key that is no element's
  clip.PatchLength(clip.truth.ElementAt(20, 4).offset, kPastEnd);            // data
  ASSERT_EQ(kStatusOK, clip.Open());
  EXPECT_EQ("right", clip.Answer(19));
  const Bytes untouched(4000, 0xEE);
  Bytes buffer = untouched;
  for (const auto& [unit, element] : {std::pair(24u, 1u), {23u, 0u}, {21u, 1u}, {20u, 4u}}) {
    EXPECT_EQ(0x7FFFFFFFFFFFFFFFu, clip->RangeEssenceData(unit, element).location);
    EXPECT_EQ(0u, clip->ReadEssenceData(unit, element, buffer.data(), 4000));
    EXPECT_EQ(untouched, buffer);
  }
  EXPECT_TRUE(clip->GetDataItem(20).empty());
  EXPECT_EQ(57u, clip->ReadEssenceData(22, 0, buffer.data(), 4000));
  EXPECT_TRUE(clip.isElementRight(24, 2));
}

}  // namespace
