#include "klv/LocalSets.h"

#include <gtest/gtest.h>

#include "tests/support/Bytes.h"

namespace {

const Bytes kTwoItems = Bytes().Item(0x3C0B, {0xFF}).Item(0x3C0A, {1, 2, 3, 10, 11, 12});

TEST(LocalSetsTest, ByteFiveOfTheKeySaysHowTagsAndLengthsAreCoded) {
  // The tag of the one item of `item`, which is two bytes long.
  const auto expect = [](int coding, const Bytes& item, const char* tag) {
    Bytes key = SetKey(0x012F);
    key.Data()[5] = static_cast<unsigned char>(coding);
    EXPECT_EQ(std::string("{\n\t") + tag + " = abcd\n}", Text(Imported<LocalSets>(key, item))) << coding;
  };
  expect(0x03, {0x85, 0x81, 2, 0xAB, 0xCD}, "00000085");
  expect(0x0B, {0x81, 0x05, 2, 0xAB, 0xCD}, "00000085");
  expect(0x13, {0x12, 0x34, 2, 0xAB, 0xCD}, "00001234");
  expect(0x1B, {0x12, 0x34, 0x56, 0x78, 2, 0xAB, 0xCD}, "12345678");
  expect(0x23, {0x85, 2, 0xAB, 0xCD}, "00000085");
  expect(0x3B, {0, 0, 0x12, 0x34, 2, 0xAB, 0xCD}, "00001234");
  expect(0x43, {0x85, 0, 2, 0xAB, 0xCD}, "00000085");
  expect(0x63, {0x85, 0, 0, 0, 2, 0xAB, 0xCD}, "00000085");
}

TEST(LocalSetsTest, AnythingButWholeItemsOfDifferentTagsEmptiesTheSet) {
  const auto expect = [](const std::string& name, unsigned int status, const Bytes& value, long long offset) {
    const auto set = Imported<LocalSets>(SetKey(0x012F), kTwoItems);
    EXPECT_EQ("{\n\t00003c0a = 0102030a 0b0c\n\t00003c0b = ff\n}", Text(set));
    EXPECT_EQ(9, set->GetParserForTag(0x3C0A)->offset());
    set->SetLength(value.Size());
    EXPECT_EQ(status, set->Import(value.Stream(), offset)) << name;
    EXPECT_EQ("{\n}", Text(set)) << name;
    unsigned int number = 77;
    EXPECT_FALSE(set->GetParserForTag(0x3C0A) || set->ReadTag(&number) || set->ReadLength(&number)) << name;
  };
  expect("a tag twice", kStatusUnreadable, Bytes(kTwoItems).Item(0x3C0B, {}), 0);
  expect("an item one byte over the end", kStatusUnreadable, Bytes(kTwoItems).Item(1, {1, 2}, 3), 0);
  expect("a value that starts before the stream", kStatusNoCopy, kTwoItems, -1);
  expect("a value that ends behind the stream", kStatusNoCopy, kTwoItems, 1);
  for (std::size_t size = 0; size < kTwoItems.Size(); ++size) {
    if (size != 5) expect(std::to_string(size) + " bytes", kStatusUnreadable, kTwoItems.First(size), 0);
  }
}

TEST(LocalSetsTest, ALargeRunOfOneTagIsGivenUpWithoutReadingItWhole) {
  const Bytes zeros = Bytes().Fill(2 << 20);
  const auto set = PacketFor<LocalSets>(SetKey(0x012F), zeros.Size());
  const OxSharedPtr<UnsoundStream> stream(new UnsoundStream(zeros));
  EXPECT_EQ(kStatusUnreadable, set->Import(stream, 0));
  EXPECT_GT(200, stream->reads);
}

TEST(LocalSetsTest, ASetThatClaimsFourGigabytesIsNotEvenRead) {
  const auto set = PacketFor<LocalSets>(SetKey(0x012F), 0xFFFFFFFF);
  const OxSharedPtr<UnsoundStream> stream(new UnsoundStream(kTwoItems));
  EXPECT_EQ(kStatusNoCopy, set->Import(stream, 0));
  EXPECT_EQ(0, stream->reads);
  EXPECT_EQ(kStatusNoInput, set->Import({}, 0));
}

}  // namespace
