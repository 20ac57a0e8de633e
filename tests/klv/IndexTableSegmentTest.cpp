#include "klv/IndexTableSegment.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/support/Bytes.h"

namespace {

constexpr long long kMost = std::numeric_limits<long long>::max();

struct Segment {
  unsigned long long start = 100, duration = 3;
  int sliceCount = 1;
  std::optional<int> tag3F0E = {};
  Bytes deltas = Batch(3, 6, Bytes{0, 0}.U32(16).Raw({0, 1}).U32(64).Raw({0, 2}).U32(0));
  unsigned int count = 3, entrySize = 15;
  Bytes entries =
      Bytes{0, 0, 0x80}.U64(0).U32(1000).Raw({2, -1, 0x33}).U64(0xFFFFFF00).U32(0xC0).Raw({-1, -2, 0}).U64(1).U32(0);
  unsigned int shortened = 0;  // the tag of an item that loses its last byte
  unsigned int missing = 0;    // the tag of an item that is left out

  Bytes Value() const {
    Bytes value;
    const auto add = [&](unsigned int tag, const Bytes& item) {
      if (tag != missing) value.Item(tag, item.First(item.Size() - (tag == shortened ? 1 : 0)));
    };
    add(0x3F0B, Bytes().U32(25).U32(1));
    add(0x3F0C, Bytes().U64(start));
    add(0x3F0D, Bytes().U64(duration));
    for (const unsigned int tag : {0x3F05u, 0x3F06u, 0x3F07u}) add(tag, Bytes().U32(2));
    add(0x3F08, {sliceCount});
    if (tag3F0E) add(0x3F0E, {*tag3F0E});
    add(0x3F09, deltas);
    add(0x3F0A, Batch(count, entrySize, entries));
    return value;
  }
  OxSharedPtr<IndexTableSegment> Import() const { return Imported<IndexTableSegment>(kIndexSegmentKey, Value()); }
};

bool Answers(const OxSharedPtr<IndexTableSegment>& segment, long long unit) {
  signed char temporal = 77, keyFrame = 77;
  unsigned char flags = 77;
  unsigned long long offset = 77;
  const bool isKnown = segment->GetStreamOffset(unit, 0, offset);
  EXPECT_EQ(isKnown, segment->GetTemporalOffset(unit, temporal)) << unit;
  EXPECT_EQ(isKnown, segment->GetKeyFrameOffset(unit, keyFrame)) << unit;
  EXPECT_EQ(isKnown, segment->GetFlags(unit, flags)) << unit;
  EXPECT_EQ(isKnown, temporal != 77 && keyFrame != 77 && flags != 77 && offset != 77) << unit;
  return isKnown;
}

TEST(IndexTableSegmentTest, OffsetsAreOfTheElementInItsSliceAndPrintWithEightDigitsOrSixteen) {
  // The third element is of slice 2, which is above the slice count and adds nothing.
  EXPECT_EQ(
      "{\n"
      "\t{UNIT(100) = T:0 K:0 F:80 O:00000010, 00000428, 00000000}\n"
      "\t{UNIT(101) = T:2 K:-1 F:33 O:FFFFFF10, 0000000100000000, FFFFFF00}\n"
      "\t{UNIT(102) = T:-1 K:-2 F:00 O:00000011, 00000041, 00000001}\n"
      "}",
      Text(Segment().Import()));
}

TEST(IndexTableSegmentTest, ACutListOfDeltaEntriesKeepsThoseBeforeTheCut) {
  const auto expect = [](const char* name, const Bytes& deltas, unsigned int count) {
    Segment fields;
    fields.deltas = deltas;
    const auto segment = fields.Import();
    ASSERT_TRUE(segment) << name;
    EXPECT_EQ(count, segment->DeltaEntryCount()) << name;
    unsigned long long offset = 77;
    EXPECT_TRUE(segment->GetStreamOffset(100, 0, offset)) << name;
    EXPECT_EQ(count == 0 ? 0u : 16u, offset) << name;
    EXPECT_FALSE(segment->GetStreamOffset(100, 1, offset)) << name;
  };
  const Bytes one = Bytes{0, 0}.U32(16);
  expect("count 0", Batch(0, 6), 0);
  expect("entries of another size", Batch(1, 7, Bytes(one).U8(0)), 0);
  expect("a cut header", Batch(1, 6).First(7), 0);
  expect("more than the item holds", Batch(0xFFFFFFFF, 6, Bytes(one).U32(0)), 1);
}

TEST(IndexTableSegmentTest, EveryItemButTheDeltaEntriesIsRequiredWhole) {
  for (const unsigned int tag : {0x3F0Bu, 0x3F0Cu, 0x3F0Du, 0x3F05u, 0x3F06u, 0x3F07u, 0x3F08u, 0x3F0Eu, 0x3F0Au}) {
    Segment cut, gone;
    cut.tag3F0E = 1;
    cut.shortened = gone.missing = tag;
    EXPECT_FALSE(cut.Import()) << std::hex << tag;
    EXPECT_EQ(tag == 0x3F0E, !!gone.Import()) << std::hex << tag;
  }
  Segment withoutDeltas;
  withoutDeltas.missing = 0x3F09;
  EXPECT_TRUE(Answers(withoutDeltas.Import(), 100));
}

TEST(IndexTableSegmentTest, EntriesMustHaveTheSizeAndNumberThatTheOtherItemsAskFor) {
  const auto import = [](int sliceCount, std::optional<int> tag3F0E, unsigned int count, unsigned int size, int bytes) {
    Segment fields;
    fields.sliceCount = sliceCount;
    fields.tag3F0E = tag3F0E;
    fields.count = count;
    fields.entrySize = size;
    fields.entries = Bytes().Fill(static_cast<std::size_t>(bytes));
    const auto segment = Segment().Import();
    segment->SetLength(fields.Value().Size());
    const bool isImported = segment->Import(fields.Value().Stream(), 0) == kStatusOK;
    EXPECT_EQ(isImported, Answers(segment, 100)) << "a failure empties the segment";
    return isImported;
  };
  EXPECT_TRUE(import(0, {}, 3, 11, 33));
  EXPECT_FALSE(import(2, {}, 3, 15, 45)) << "two slices in entries of one";
  EXPECT_TRUE(import(7, 1, 3, 15, 45)) << "3F0E is the slice count";
  EXPECT_FALSE(import(1, 1, 3, 23, 69)) << "3F0E is no count of position tables";
  EXPECT_FALSE(import(1, {}, 0, 15, 0)) << "no entries";
  EXPECT_FALSE(import(1, {}, 3, 15, 46)) << "one byte too many";
  EXPECT_FALSE(import(0, {}, 0x1745D175, 11, 7)) << "11 times the count is 7 in 32 bits";
}

TEST(IndexTableSegmentTest, ACopyKeepsItsAnswersWhenTheOriginalIsImportedAnew) {
  const auto segment = Segment().Import();
  const OxSharedPtr<IndexTableSegment> copy(new IndexTableSegment(*segment));
  const std::string text = Text(copy);
  Segment other;
  other.start = 0, other.sliceCount = 0, other.entrySize = 11, other.entries = Bytes().Fill(33, 7), other.deltas = {};
  segment->SetLength(other.Value().Size());
  ASSERT_EQ(kStatusOK, segment->Import(other.Value().Stream(), 0));
  EXPECT_EQ(text, Text(copy));
  EXPECT_TRUE(Answers(segment, 0) && !Answers(segment, 100));
  segment->init();
  EXPECT_EQ("{\n}", Text(segment));
  EXPECT_EQ(text, Text(copy));
}

TEST(IndexTableSegmentTest, UnitsAreComparedWithoutOverflow) {
  const auto expect = [](long long start, long long duration, long long first, long long last) {
    Segment fields;
    fields.start = static_cast<unsigned long long>(start);
    fields.duration = static_cast<unsigned long long>(duration);
    const auto segment = fields.Import();
    for (const long long unit :
         {-kMost - 1, -kMost, -1LL, 0LL, 2LL, 3LL, 99LL, 100LL, 101LL, 102LL, kMost - 1, kMost}) {
      EXPECT_EQ(unit >= first && unit <= last, Answers(segment, unit)) << start << " + " << duration << ", " << unit;
    }
    EXPECT_LT(Text(segment).size(), 400u) << "longer than its entries";
  };
  expect(100, 2, 100, 101);
  expect(0, kMost, 0, 2);
  expect(kMost - 1, kMost, kMost - 1, kMost);
  expect(-kMost - 1, 2, -kMost - 1, -kMost);
  expect(100, -1, 100, 99);
}

}  // namespace
