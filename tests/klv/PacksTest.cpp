#include <gtest/gtest.h>

#include "klv/PartitionPack.h"
#include "klv/PrimerPack.h"
#include "klv/RandomIndexPack.h"
#include "klv/StreamFileSequenceInfo.h"
#include "klv/SystemMetadataPack.h"
#include "tests/support/Bytes.h"

namespace {

Bytes PackValue(unsigned long long headerBytes, unsigned long long indexBytes, const Bytes& batch) {
  const Bytes head = Bytes().U16(1).U16(3).U32(512).U64(0x10000).U64(0x800).U64(0x90000).U64(headerBytes);
  return Bytes(head).U64(indexBytes).U32(1).U64(0x7000).U32(2).Raw(Uid(9)).Raw(batch);
}

TEST(PartitionPackTest, APackThatIsCutKeepsTheFieldsBeforeTheCut) {
  const Bytes value = PackValue(4096, 8192, References({1, 2}));
  for (std::size_t size = 0; size <= value.Size(); ++size) {
    const auto pack = PacketFor<PartitionPack>(kHeaderPackKey, value.Size());
    EXPECT_EQ(size >= 88 ? kStatusOK : kStatusUnreadable, pack->Import(value.First(size).Stream(), 0)) << size;
    EXPECT_EQ(size >= 8 ? 512u : 0u, pack->KAGSize()) << size;
    EXPECT_EQ(size >= 24 ? 0x800u : 0u, pack->PreviousPartition()) << size;
    EXPECT_EQ(size >= 32 ? 0x90000u : 0u, pack->FooterPartition()) << size;
    EXPECT_EQ(size >= 64 ? 2u : 0u, pack->BodySID()) << size;
    EXPECT_EQ(size >= 80, !!pack->OperationalPattern()) << size;
    EXPECT_EQ(size >= 88 ? (size - 88) / 16 : 0, pack->EssenceCount()) << size;
    EXPECT_FALSE(pack->EssenceAtIndex(pack->EssenceCount())) << size;
  }
  PartitionPack pack;
  EXPECT_EQ(kStatusNoInput, pack.Import({}, 0));
  EXPECT_EQ(kStatusUnreadable, pack.Import(value.Stream(), static_cast<long long>(value.Size()) + 1));
  EXPECT_EQ(kStatusUnreadable, pack.Import(value.Stream(), -1));
}

TEST(PartitionPackTest, ACountBeyondReasonStopsAtTheEndOfTheValue) {
  const Bytes two = Uid(1).Raw(Uid(2));
  for (const unsigned int count : {65536u, 65537u}) {  // the first of them is still believed
    ParseMetaData reader(Packet(kHeaderPackKey, PackValue(0, 0, Batch(count, 16, two))).Fill(count * 16).Stream());
    PartitionPack pack;
    ASSERT_TRUE(reader.ParsePacket(&pack));
    EXPECT_EQ(count == 65536 ? count : 2, pack.EssenceCount());
  }
}

Bytes Entry(unsigned int tag, unsigned long long label) { return Bytes().U16(tag).Raw(Uid(label)); }

TEST(PrimerPackTest, FirstTagOfALabelAndFirstLabelOfATagWin) {
  const Bytes items = Entry(0x3C0A, 9).Raw(Entry(0x8001, 9)).Raw(Entry(0x8002, 5)).Raw(Entry(0x8002, 4));
  const auto primer = Imported<PrimerPack>(kPrimerPackKey, Batch(4, 18, items));
  EXPECT_EQ(
      "{\n"
      "\tA0.00.00.00.00.00.00.00.00.00.00.00.00.00.00.04 = 8002\n"
      "\tA0.00.00.00.00.00.00.00.00.00.00.00.00.00.00.05 = 8002\n"
      "\tA0.00.00.00.00.00.00.00.00.00.00.00.00.00.00.09 = 3C0A\n"
      "}",
      Text(primer));
  EXPECT_EQ(4, primer->UIDAtTag(0x8002)->ValueAtIndex(15));
  EXPECT_FALSE(primer->UIDAtTag(0x8001));
  unsigned short tag = 77;
  EXPECT_FALSE(primer->UIDToTag(&tag, nullptr));
  EXPECT_EQ(77, tag);
  const MxfUUID unknown;
  EXPECT_FALSE(primer->UIDToTag(&tag, &unknown));
  EXPECT_EQ(0, tag);
}

TEST(PrimerPackTest, WhatCannotBeReadLeavesAnEmptyMapAndMayStillBeNoFailure) {
  const Bytes items = Entry(1, 1).Raw(Entry(2, 2));
  const auto import = [](const Bytes& value) {
    const auto primer = Imported<PrimerPack>(kPrimerPackKey, Batch(1, 18, Entry(7, 1)));
    const unsigned int status = primer->Import(value.Stream(), 0);
    EXPECT_EQ("{\n}", Text(primer));
    return status;
  };
  EXPECT_EQ(kStatusOK, import(Batch(2, 18).First(7))) << "cut inside the header";
  EXPECT_EQ(kStatusOK, import(Batch(0, 18, items))) << "no items";
  EXPECT_EQ(kStatusOK, import(Batch(2, 20, items))) << "items of another length";
  EXPECT_EQ(kStatusUnreadable, import(Batch(2, 18, items.First(35)))) << "cut inside a label";
  EXPECT_EQ(kStatusUnreadable, import(Batch(0x71C71C72, 18, items))) << "18 times the count is 4 in 32 bits";
  ParseMetaData reader(Packet(kPrimerPackKey, Batch(65537, 18, items)).Fill(65537 * 18).Stream());
  PrimerPack primer;
  EXPECT_FALSE(reader.ParsePacket(&primer)) << "a count beyond reason reaches into the essence";
}

TEST(RandomIndexPackTest, WholeEntriesAreReadAndAFailureLeavesNone) {
  const Bytes value = Bytes().U32(0).U64(0).U32(2).U64(0x123456789AULL).U32(1).U64(7);
  for (unsigned int length = 0; length <= value.Size(); ++length) {
    const auto pack = Imported<RandomIndexPack>(kRandomIndexPackKey, value.First(length));
    EXPECT_EQ(length / 12, pack->Count()) << length;
    unsigned int sid = 77;
    unsigned long long offset = 77;
    EXPECT_EQ(length >= 24, pack->GetBodySIDAtIndex(1, sid) && pack->GetOffsetAtIndex(1, offset)) << length;
    EXPECT_EQ(length >= 24 ? 2u : 77u, sid) << length;
    EXPECT_EQ(length >= 24 ? 0x123456789AULL : 77u, offset) << length;
    pack->SetLength(length + 1);
    EXPECT_EQ(kStatusUnreadable, pack->Import(value.First(length).Stream(), 0)) << length;
    EXPECT_EQ(0u, pack->Count()) << length;
  }
}

TEST(PacksTest, LongListsAreReadWholeOrNotAtAll) {
  constexpr unsigned int kCount = 1500;
  Bytes partitions, labels;
  for (unsigned int i = 0; i < kCount; ++i) {
    partitions.U32(i).U64(i + 0x100000000ULL);
    labels.Raw(Entry(i, i));
  }
  const auto list = Imported<RandomIndexPack>(kRandomIndexPackKey, partitions);
  const auto primer = Imported<PrimerPack>(kPrimerPackKey, Batch(kCount, 18, labels));
  ASSERT_EQ(kCount, list->Count());
  for (unsigned int i = 0; i < kCount; ++i) {
    unsigned int sid = 0;
    unsigned long long offset = 0;
    ASSERT_TRUE(list->GetBodySIDAtIndex(i, sid) && list->GetOffsetAtIndex(i, offset));
    ASSERT_EQ(i, sid);
    ASSERT_EQ(i + 0x100000000ULL, offset);
    unsigned short tag = 0;
    const MxfUUID label(Uid(i).Data());
    ASSERT_TRUE(primer->UIDToTag(&tag, &label));
    ASSERT_EQ(i, tag);
  }
  EXPECT_EQ(kStatusUnreadable, primer->Import(Batch(kCount, 18, labels.First(kCount * 18 - 1)).Stream(), 0));
  EXPECT_EQ("{\n}", Text(primer));
}

TEST(SystemMetadataPackTest, ACutKeepsWhatIsBeforeItAndOnlyKnownDateTypesAreKept) {
  for (const int type : {0x80, 0x81, 0x82, 0x83, 0x02}) {
    const Bytes value = Bytes{0x5C, 2, 3, 4, 5, 6, 7}.Raw(Uid(1)).Raw({type}).Fill(16, 0xC0).Raw({type}).Fill(16, 0xD0);
    const unsigned int kept = type == 0x81 || type == 0x82 ? static_cast<unsigned int>(type) : 0;
    for (std::size_t size = 0; size <= value.Size(); ++size) {
      SystemMetadataPack pack;
      EXPECT_EQ(size == 57 ? kStatusOK : kStatusUnreadable, pack.Import(value.First(size).Stream(), 0)) << size;
      EXPECT_EQ(size >= 5 ? 0x0405 : 0, pack.ChannelHandle()) << size;
      EXPECT_EQ(size >= 23, !!pack.UnibersalLabel()) << size;
      EXPECT_EQ(size >= 24 ? kept : 0, pack.CreationDateType()) << size;
      EXPECT_EQ(size >= 41 ? kept : 0, pack.UserDataType()) << size;
      EXPECT_EQ(size >= 40, pack.CreationDate()[15] == 0xC0) << size;
      EXPECT_EQ(size >= 57, pack.UserDate()[15] == 0xD0) << size;
      pack.init();
      EXPECT_EQ(size >= 23, !!pack.UnibersalLabel()) << "stays";
    }
  }
}

TEST(StreamFileSequenceInfoTest, AMalformedItemOnlyEndsTheDecoding) {
  // Which of instance UID, package UID, start timecode and start position are read.
  const auto fields = [](const Bytes& value) {
    const auto info = PacketFor<StreamFileSequenceInfo>(kPrimerPackKey, value.Size());
    EXPECT_EQ(kStatusUnreadable, info->Import({}, 0));
    EXPECT_EQ(kStatusUnreadable, info->Import(value.Stream(), 1000));
    // The bytes behind the value would do for what runs over its end.
    EXPECT_EQ(kStatusOK, info->Import(Bytes(value).Fill(64).Stream(), 0));
    return std::string({info->InstanceUID() ? 'I' : '-', info->PackageUID() ? 'U' : '-',
                        info->StartTimecode() ? 'T' : '-', info->StartPosition() ? 'P' : '-'});
  };
  const Bytes eight = Bytes().U64(8), head = Bytes().Item(0x1201, eight);
  EXPECT_EQ("----", fields({}));
  EXPECT_EQ("IUTP", fields(Bytes(head).Item(0x3C0A, Uid(1)).Item(0x1501, eight).Item(0x4401, Umid(1))));
  EXPECT_EQ("---P", fields(Bytes().Item(0, {}).Item(0x4444, eight).Raw(head))) << "unknown items are skipped";
  EXPECT_EQ("---P", fields(Bytes(head).Raw({0x15, 0x01, 0x00}))) << "three bytes left";
  EXPECT_EQ("---P", fields(Bytes(head).Item(0x3C0A, Uid(1).First(15)).Item(0x1501, eight))) << "another length";
  EXPECT_EQ("---P", fields(Bytes(head).Item(0x4401, Umid(1).First(31), 32))) << "a known tag over the end";
  EXPECT_EQ("---P", fields(Bytes(head).Item(0x4444, eight, 9))) << "an unknown tag over the end";
}

}  // namespace
