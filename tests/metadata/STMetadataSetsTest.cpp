#include "metadata/STMetadataSets.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "foundation/UUIDDefine.h"
#include "metadata/STTrack.h"
#include "tests/support/Bytes.h"

namespace {

OxSharedPtr<STMetadataSets> MetadataSet(const Bytes& items) { return Imported<STMetadataSets>(SetKey(0x0128), items); }

TEST(STMetadataSetsTest, EachKindOfValueIsReadAsItsClassAndOnlyAtItsLength) {
  const auto expect = [](const char* name, unsigned int tag, const Bytes& item, const std::string& text) {
    const auto set = MetadataSet(Bytes().Item(tag, item).Item(0xFFFF, Bytes().Fill(64)));
    EXPECT_EQ(text, Text(set->ValueForTag(tag))) << name;
  };
  const std::string anyObject = Text(Bytes().Stream()), none = "(none)";
  expect("number", 0x3B05, {1, 3}, "259");
  expect("number of another length", 0x3B05, {0, 0, 1, 3}, none);
  expect("signed byte", 0x3D04, {0xFE}, "-2");
  expect("rational", 0x4B01, Bytes().U32(24000).U32(1001), "24000/1001");
  expect("date", 0x4405, Bytes().U16(2026).Raw({11, 22, 9, 8, 7, 1}), "2026/11/22 9:8:7 4");
  expect("reference of 15 bytes", 0x3C0A, Uid(1).First(15), none);
  expect("reference of 17 bytes", 0x3C0A, Uid(1).U8(0), none);
  expect("text", 0x3C01, {0, 'M', 0, 'X', 0, 'F'}, "MXF");
  expect("package name, not answered", 0x4402, {0, 'M'}, none);
  expect("UMID of 33 bytes", 0x4401, Umid(1).U8(0), none);
  expect("bytes", 0x3215, {1, 0xFF}, "{ 1, 255 }");
  expect("line map", 0x320D, Batch(2, 4, Bytes().U32(21).U32(~0ULL)), "{ 21, -1 }");
  expect("line map without lines", 0x320D, Batch(0, 4), "{}");
  expect("line map over its item", 0x320D, Batch(2, 4, Bytes().U32(21)), none);
  expect("line map without a header", 0x320D, Batch(0, 4).First(7), none);
  expect("2^32 - 1 numbers of no size", 0x320D, Batch(0xFFFFFFFF, 0), none);
  expect("a number of no size, read from the next item", 0x320D, Batch(1, 0), "{ -65472 }");
  expect("count times size is 8 in 32 bits", 0x320D, Batch(0x20000001, 8, Bytes().U64(1)), none);
  expect("pixel layout of 12 bytes", 0x3401, Bytes().Fill(12), anyObject);
  expect("two of four bytes", 0x3D10, Batch(2, 4, Bytes{1, 2, 3, 4, 5, 6, 7, 8}), anyObject);
  expect("two of four bytes, and one more", 0x3D10, Batch(2, 4, Bytes{1, 2, 3, 4, 5, 6, 7, 8, 9}), none);
  expect("2^32 - 1 of no bytes", 0x3D10, Batch(0xFFFFFFFF, 0), anyObject);
  expect("2^30 of 4 bytes, which is 0 in 32 bits", 0x3D10, Batch(0x40000000, 4), none);
}

TEST(STMetadataSetsTest, ListsHoldTheirElements) {
  const Bytes layout = Bytes{'R', 10, 'G', 10, 'B', 12}.Fill(10), pairs = Bytes{1, 2, 3, 4};
  const auto set = MetadataSet(Bytes().Item(0x3401, layout).Item(0x3405, pairs).Item(0x3D10, Batch(2, 2, pairs)));
  const auto pixels = set->PixelLayoutForTag(0x3401);
  ASSERT_EQ(8u, pixels->size()) << "zero pairs included";
  EXPECT_TRUE((*pixels)[2].code == 'B' && (*pixels)[2].depth == 12 && (*pixels)[7].code == 0);
  EXPECT_EQ(0u, set->PixelLayoutForTag(0x3405)->size());
  EXPECT_FALSE(set->PixelLayoutForTag(0x3406));
  EXPECT_EQ(2u, set->EnumArrayForTag(0x3D10)->Count());
  EXPECT_EQ("{ 3, 4 }", Text(set->EnumArrayForTag(0x3D10)->LastObject()));
}

// Items behind the end of a damaged list are taken from what follows in the set, as by reading the list whole.
TEST(STMetadataSetsTest, ReferencesAreCountedAndFoundWithoutTheirList) {
  const Bytes three = Bytes(Uid(1)).Raw(Uid(2)).Raw(Uid(3));
  for (const Bytes& item :
       {Batch(3, 16, three), Batch(2, 16, three), Batch(0, 16, three), Batch(3, 15, three), Batch(3, 16).First(7),
        Batch(9, 16, three), Batch(5, 16, three), Batch(0xFFFFFFFF, 16, three), Batch(3, 0x10010, three)}) {
    for (const std::size_t rest : {0u, 11u, 12u, 44u}) {
      Bytes items = Bytes().Item(0x4403, item);
      if (rest > 0) items.Item(0xFFFF, Bytes().Fill(rest, 0x5A));
      const auto set = MetadataSet(items);
      const auto list = set->UUIDArrayValueForTag(0x4403);
      const unsigned long count = list ? list->Count() : 0;
      EXPECT_EQ(count, set->UUIDCountForTag(0x4403));
      for (unsigned int i = 0; i < count; ++i) {
        EXPECT_EQ(Text(list->ObjectAtIndex(i)), Text(set->UUIDAtIndexForTag(0x4403, i))) << i << " of " << count;
      }
      EXPECT_FALSE(set->UUIDAtIndexForTag(0x4403, static_cast<unsigned int>(count)));
    }
  }
  EXPECT_EQ(0u, MetadataSet(Bytes().Item(0xFFFF, {1}))->UUIDCountForTag(0x4403));
}

OxSharedPtr<PrimerPack> Primer(std::initializer_list<std::pair<unsigned int, OxSharedPtr<MxfUUID>>> entries) {
  Bytes items;
  for (const auto& [tag, label] : entries) {
    items.U16(tag);
    for (unsigned int i = 0; i < 16; ++i) items.U8(label->ValueAtIndex(i));
  }
  return Imported<PrimerPack>(kPrimerPackKey, Batch(static_cast<unsigned int>(entries.size()), 18, items));
}

TEST(STMetadataSetsTest, APropertyOfADynamicTagIsFoundThroughThePrimer) {
  const auto primer = Primer({{0x8003, FBC_UL_MER_BitRate},
                              {0x8004, FBC_UL_MER_CodedContentScanning},
                              {0, FBC_UL_MER_LowDelay},
                              {0x8003, FBC_UL_PictureEssenceTrack}});
  const auto set = MetadataSet(Bytes().Item(0x8003, Bytes().U32(7)).Item(0x8004, {3}).Item(0, {1}));
  EXPECT_EQ("7", Text(set->ValueForUUID(FBC_UL_MER_BitRate, primer)));
  EXPECT_EQ("{ 3 }", Text(set->ValueForUUID(FBC_UL_MER_CodedContentScanning, primer)));
  EXPECT_EQ("1", Text(set->ValueForUUID(FBC_UL_MER_LowDelay, primer))) << "a primer may assign tag 0";
  EXPECT_FALSE(set->ValueForUUID(FBC_UL_MER_ClosedGOP, primer)) << "not in the primer: tag 0 is not its tag";
  EXPECT_FALSE(set->ValueForUUID(FBC_UL_PictureEssenceTrack, primer)) << "no such property";
  EXPECT_FALSE(set->ValueForUUID({}, primer) || set->ValueForUUID(FBC_UL_MER_BitRate, {}));
}

TEST(STMetadataSetsTest, TwoThreadsMayAskOneSet) {
  const auto set = MetadataSet(Bytes().Item(0x4801, Bytes().U32(1)).Item(0x4804, Bytes().U32(2)).Item(0x3C0A, Uid(3)));
  std::atomic<int> wrong = 0;
  const auto ask = [&](unsigned int tag, unsigned int expected) {
    for (int i = 0; i < 5000; ++i) {
      unsigned int value = 0;
      const OxSharedPtr<MxfUUID> uid = set->ValueForTag(0x3C0A);
      if (!GetValue(set->ValueForTag(tag), value) || value != expected || uid->ValueAtIndex(15) != 3) ++wrong;
    }
  };
  std::thread other(ask, 0x4801, 1);
  ask(0x4804, 2);
  other.join();
  EXPECT_EQ(0, wrong);
}

TEST(STTrackTest, TheComponentAnswersBeforeItsOwnDescriptor) {
  const Bytes one = Bytes().U32(1), two = Bytes().U32(2);
  const auto descriptor = MetadataSet(Bytes().Item(0x1102, two).Item(0x1001, References({1})).Item(0x8003, two));
  STTrack track;
  track.AddComponentAndDescriptor(MetadataSet(Bytes().Item(0x1102, one)), {});
  track.AddComponentAndDescriptor({}, descriptor);
  track.AddComponentAndDescriptor(MetadataSet(Bytes().Item(0x1102, one).Item(0x1001, Batch(0, 16))), descriptor);
  const char* const expected[] = {"1", "2", "1", "(none)"};
  for (unsigned int i = 0; i < 4; ++i) EXPECT_EQ(expected[i], Text(track.ValueForTag(0x1102, i))) << i;
  EXPECT_EQ(0u, OxSharedPtr<OxArray>(track.ValueForTag(0x1001, 2))->Count()) << "an empty list is an answer";
  EXPECT_FALSE(track.ValueForUUID(FBC_UL_MER_BitRate, 2)) << "no primer";
  track.SetPrimerPack(Primer({{0x8003, FBC_UL_MER_BitRate}}));
  EXPECT_EQ("2", Text(track.ValueForUUID(FBC_UL_MER_BitRate, 2)));
  track.ClearComponentAndDescriptor();
  EXPECT_FALSE(track.ValueForTag(0x1102, 1));
}

}  // namespace
