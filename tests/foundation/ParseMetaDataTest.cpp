#include "foundation/ParseMetaData.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <limits>

#include "tests/support/Bytes.h"

namespace {

template <class Value>
void ExpectInteger(bool (ParseMetaData::*read)(Value*), Value expected) {
  const Bytes stored = {0x80, 0x81, 0x82, 0x83, 0x84, 0x85, 0x86, 0x87, 0x88};
  for (std::size_t size = 0; size <= sizeof(Value); ++size) {
    ParseMetaData reader(stored.First(1 + size).Stream());
    reader.SetOffset(1, 0);
    Value value = 77;
    const bool isWhole = size == sizeof(Value);
    EXPECT_EQ(isWhole, (reader.*read)(&value)) << size << " bytes";
    EXPECT_EQ(isWhole ? expected : 0, value) << size << " bytes";
    EXPECT_EQ(isWhole ? 1 + static_cast<long long>(size) : 1, reader.offset()) << size << " bytes";
    EXPECT_FALSE((reader.*read)(nullptr));
  }
}

TEST(ParseMetaDataTest, IntegersAreBigEndianAndAShortOneIsZeroAndStays) {
  ExpectInteger<unsigned char>(&ParseMetaData::GetUInt8, 0x81);
  ExpectInteger<unsigned short>(&ParseMetaData::GetUInt16, 0x8182);
  ExpectInteger<unsigned int>(&ParseMetaData::GetUInt32, 0x81828384);
  ExpectInteger<unsigned long long>(&ParseMetaData::GetUInt64, 0x8182838485868788);
  ExpectInteger<signed char>(&ParseMetaData::GetInt8, -127);
  ExpectInteger<short>(&ParseMetaData::GetInt16, -32382);
  ExpectInteger<int>(&ParseMetaData::GetInt32, -2122153084);
  ExpectInteger<long long>(&ParseMetaData::GetInt64, -9114578090645354616);
}

TEST(ParseMetaDataTest, BERNumbersOfEachFormAreReadWholeOrNotAtAll) {
  const auto expect = [](const char* name, auto read, const Bytes& stored, unsigned int expected, long long consumed) {
    ParseMetaData reader(Bytes{0xEE}.Raw(stored).Stream());
    reader.SetOffset(1, 0);
    unsigned int value = 77;
    EXPECT_EQ(consumed > 0, (reader.*read)(&value)) << name;
    EXPECT_EQ(expected, value) << name;
    EXPECT_EQ(1 + consumed, reader.offset()) << name;
  };
  const auto kBER = &ParseMetaData::GetBER, kOID = &ParseMetaData::GetOIDBER;
  expect("short form", kBER, {0x7F, 0xFF}, 127, 1);
  expect("one length byte", kBER, {0x81, 0x80}, 128, 2);
  expect("leading zeros", kBER, {0x83, 0, 0, 5}, 5, 4);
  expect("the greatest length", kBER, {0x84, 255, 255, 255, 255}, 0xFFFFFFFF, 5);
  expect("a cut length", kBER, {0x84, 0x80, 0, 0}, 0, 0);
  expect("indefinite length", kBER, {0x80, 0, 0}, 0, 0);
  expect("five length bytes", kBER, {0x85, 0, 0, 0, 0, 1}, 0, 0);
  expect("two-byte identifier", kOID, {0x81, 0x01, 0xFF}, 129, 2);
  expect("four-byte identifier", kOID, {0xFF, 0xFF, 0xFF, 0x7F}, 0x0FFFFFFF, 4);
  expect("five-byte identifier", kOID, {0x81, 0x81, 0x81, 0x81, 0x01}, 0, 0);
  expect("a cut identifier", kOID, {0x81, 0x81}, 0, 0);
}

TEST(ParseMetaDataTest, SetOffsetAcceptsAndRefuses) {
  constexpr long long kMost = std::numeric_limits<long long>::max(), kLeast = std::numeric_limits<long long>::min();
  // Where a reader at `start` of 100 bytes then is; -77 when it is refused and has not moved.
  const auto move = [](long long start, long long offset, int origin) {
    ParseMetaData reader(Bytes().Fill(100).Stream());
    reader.SetOffset(start, 0);
    const bool isMoved = reader.SetOffset(offset, origin);
    const long long position = reader.offset();
    unsigned char byte = 0;
    EXPECT_EQ(position >= 0 && position < 100, reader.GetUInt8(&byte)) << "at " << position;
    return isMoved ? position : position == start ? -77 : kLeast;
  };
  EXPECT_EQ(100, move(3, 100, 0));
  EXPECT_EQ(-77, move(3, 101, 0));
  EXPECT_EQ(-5, move(3, -5, 0)) << "taken, but no read succeeds there";
  EXPECT_EQ(0, move(3, -3, 1));
  EXPECT_EQ(100, move(3, 97, 1));
  for (const long long offset : {-4LL, 98LL, kMost}) EXPECT_EQ(-77, move(3, offset, 1)) << offset;
  EXPECT_EQ(-77, move(kLeast, -1, 1));
  EXPECT_EQ(99, move(3, -1, 2));
  EXPECT_EQ(101, move(3, 1, 2)) << "taken, but no read succeeds there";
  EXPECT_EQ(0, move(3, -100, 2));
  for (const long long offset : {-101LL, kLeast, kMost}) EXPECT_EQ(-77, move(3, offset, 2)) << offset;
  EXPECT_EQ(-77, move(3, 0, 3));
}

TEST(ParseMetaDataTest, AnExtendedUMIDRepeatsItsFirstHalfAndGoes64BytesOn) {
  Bytes extended = Umid(1);
  extended.Data()[12] = 0x33;
  for (const std::size_t size : {32u, 64u}) {
    ParseMetaData reader(Bytes(extended).Fill(32, 0xEE).First(size).Stream());
    const OxSharedPtr<UMID> umid = reader.GetUMID();
    ASSERT_TRUE(umid && umid->Length() == 64);
    for (unsigned int i = 0; i < 32; ++i) EXPECT_EQ(umid->ValueAtIndex(i), umid->ValueAtIndex(32 + i)) << i;
    EXPECT_EQ(64, reader.offset()) << size << " bytes in the stream";
    EXPECT_EQ(0u, reader.RestLength());
  }
}

TEST(ParseMetaDataTest, BatchesHoldWhatIsThereWhateverTheirCountSays) {
  const auto expect = [](const Bytes& stored, unsigned long count) {
    const OxSharedPtr<UnsoundStream> stream(new UnsoundStream(stored));
    ParseMetaData reader(stream);
    EXPECT_EQ(count, reader.GetUUIDArray()->Count());
    EXPECT_EQ(8 + 16 * count, static_cast<unsigned long>(reader.offset()));
    EXPECT_LE(stream->reads, 5);
  };
  const Bytes two = Uid(1).Raw(Uid(2));
  expect(Batch(1, 16, two), 1);
  expect(Batch(0, 16, two), 0);
  expect(Batch(3, 32, two), 0);
  expect(Batch(0xFFFFFFFF, 16, two.First(20)), 1);
}

long PeakKilobytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

TEST(ParseMetaDataTest, ClaimsOfGigabytesAreRefusedBeforeAnythingIsTakenOrRead) {
  const OxSharedPtr<UnsoundStream> stream(new UnsoundStream(Bytes().Fill(30)));
  ParseMetaData reader(stream);
  const long before = PeakKilobytes();
  EXPECT_FALSE(reader.GetUTF16String(0xFFFFFFFE));
  EXPECT_FALSE(reader.GetEnum(0xFFFFFFFF) || reader.GetEnum(~0ULL));
  EXPECT_FALSE(reader.CopyMemoryStream(0xFFFFFFFF) || reader.CopyMemoryStream(~0ULL));
  EXPECT_FALSE(reader.GetUTF16String(0) || reader.GetUTF16String(7)) << "no texts either";
  EXPECT_EQ(0, stream->reads + reader.offset());
  EXPECT_LT(PeakKilobytes() - before, 100 << 10);
}

// `read` consists of a number of reads; each of them comes up short once.
template <class Read>
void ExpectNoMoveWhenShort(const char* name, int reads, Read read) {
  const Bytes stored = Bytes{0xEE, 0x82, 0x81, 0x01}.Fill(96, 0x33);  // good for everything from the second byte on
  for (int shortRead = 0; shortRead <= reads; ++shortRead) {
    ParseMetaData reader(new UnsoundStream(stored, shortRead));
    reader.SetOffset(1, 0);
    EXPECT_EQ(shortRead == 0, !!read(reader)) << name << ", read " << shortRead;
    EXPECT_EQ(shortRead == 0, reader.offset() > 1) << name << ", read " << shortRead;
  }
  ParseMetaData withoutStream;
  EXPECT_FALSE(read(withoutStream)) << name;
}
template <class Value>
void ExpectNoMoveWhenShort(const char* name, int reads, bool (ParseMetaData::*read)(Value*)) {
  ExpectNoMoveWhenShort(name, reads, [read, value = Value()](auto& reader) mutable { return (reader.*read)(&value); });
}

TEST(ParseMetaDataTest, AnyReadThatComesUpShortLeavesThePosition) {
  ExpectNoMoveWhenShort("timestamp", 7, &ParseMetaData::GetTimestamp);
  ExpectNoMoveWhenShort("rational", 2, &ParseMetaData::GetRational);
  ExpectNoMoveWhenShort("length", 2, &ParseMetaData::GetBER);
  ExpectNoMoveWhenShort("object identifier", 3, &ParseMetaData::GetOIDBER);
  ExpectNoMoveWhenShort<MxfUUID>("key", 1, &ParseMetaData::GetUUID);
  ExpectNoMoveWhenShort("extended UMID", 2, [](auto& reader) { return reader.GetUMID(); });
  ExpectNoMoveWhenShort("batch header", 1, [](auto& reader) { return reader.GetUUIDArray(); });
  ExpectNoMoveWhenShort("bytes", 1, [](auto& reader) { return reader.GetEnum(12); });
  ExpectNoMoveWhenShort("text", 1, [](auto& reader) { return reader.GetUTF16String(12); });
  ExpectNoMoveWhenShort("copy", 1, [](auto& reader) { return reader.CopyMemoryStream(12); });
}

}  // namespace
