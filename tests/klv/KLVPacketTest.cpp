#include "klv/KLVPacket.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/Bytes.h"

namespace {

constexpr long long kHeadSize = 16 + 5;

// Imports primer packs, says what it is told to, and remembers where it was asked to import.
class ObedientPacket : public KLVPacket {
 public:
  bool isImportable() override { return PacketType() == kKeyPrimerPack; }
  using KLVPacket::Import;
  unsigned int Import(OxSharedPtr<OxStream>, long long offset) override {
    importedAt = offset;
    if (status == kShortOfMemory) throw std::bad_alloc();
    if (status == kWithoutReader) throw static_cast<const char*>("LocalSets Init Error");
    return status;
  }

  static constexpr unsigned int kShortOfMemory = 0x10000, kWithoutReader = 0x20000;  // would count as success
  unsigned int status = kStatusOK;
  long long importedAt = -1;
};

TEST(KLVPacketTest, EveryPrefixOfAPacketFailsAndTheReaderStaysAtTheKey) {
  const Bytes file = Bytes{0xEE}.Raw(Packet(kPrimerPackKey, Bytes().Fill(7)));
  for (std::size_t size = 1; size < file.Size(); ++size) {
    ParseMetaData reader(file.First(size).Stream());
    reader.SetOffset(1, 0);
    ObedientPacket packet;
    EXPECT_FALSE(reader.ParsePacket(&packet)) << size;
    EXPECT_EQ(1, reader.offset()) << size;
    // Key and length alone are taken, but the packet is not touched.
    const bool isHeadThere = size >= 1 + kHeadSize;
    EXPECT_EQ(isHeadThere, reader.ParseKeyAndLength(&packet)) << size;
    EXPECT_EQ(isHeadThere ? 1 + kHeadSize : 1, reader.offset()) << size;
    EXPECT_EQ(kKeyNotSMPTE, packet.PacketType()) << size;
  }
}

// Zeros, but for a few bytes at one place. Remembers the last block of 64 KiB that was asked for.
class SparseStream : public OxStream {
 public:
  SparseStream(unsigned long long start, const Bytes& bytes) : m_start(start), m_bytes(bytes) {
    SetLength(start + bytes.Size());
  }
  using OxStream::operator=;
  long long Read(unsigned char* buffer, unsigned long long size, long long offset, OxStream_Seek_Origin) override {
    const _OxRange range = CalcReadRange(size, offset, 0);
    for (unsigned long long i = 0; i < range.length; ++i) {
      const unsigned long long at = range.location + i;
      buffer[i] = at < m_start ? 0 : m_bytes.Data()[at - m_start];
      lastBlock = std::max(lastBlock, at / 65536);
    }
    return static_cast<long long>(range.length);
  }
  unsigned long long lastBlock = 0;

 private:
  unsigned long long m_start;
  Bytes m_bytes;
};

TEST(KLVPacketTest, KeyAndLengthTakenAtOnceAreThoseTakenInStepsFromTheSameBlocks) {
  for (unsigned long long start = 65536 - 22; start <= 65536; ++start) {
    for (const int first : {0x00, 0x01, 0x7F, 0x80, 0x81, 0x82, 0x83, 0x84, 0x85, 0x88, 0xFF}) {
      const Bytes whole = Bytes(kPrimerPackKey).Raw({first, 0, 0, 0, 1}).Fill(3);
      for (std::size_t size = 0; size <= whole.Size(); ++size) {
        const OxSharedPtr<SparseStream> atOnce(new SparseStream(start, whole.First(size)));
        const OxSharedPtr<SparseStream> inSteps(new SparseStream(start, whole.First(size)));
        ParseMetaData reader(atOnce), steps(inSteps);
        steps.SetOffset(static_cast<long long>(start), 0);
        MxfUUID key;
        unsigned int length = 0;
        const bool isHead = steps.GetUUID(&key) && steps.GetBER(&length);
        if (!isHead) steps.SetOffset(static_cast<long long>(start), 0);
        const bool isPacket = isHead && length <= steps.RestLength();
        reader.SetOffset(static_cast<long long>(start), 0);
        KLVPacket packet;
        SCOPED_TRACE(testing::Message() << start << ", first length byte " << first << ", cut to " << size);
        ASSERT_EQ(isPacket ? PacketHead::Read
                  : isHead ? PacketHead::PastEnd
                           : PacketHead::Failed,
                  reader.ReadKeyAndLength(&packet));
        ASSERT_EQ(steps.offset(), reader.offset());
        ASSERT_EQ(isPacket ? length : 0, packet.Length());
        ASSERT_EQ(isPacket ? start : 0, packet.Offset());
        ASSERT_EQ(isPacket ? kKeyPrimerPack : kKeyNotSMPTE, packet.PacketType());
        ASSERT_EQ(inSteps->lastBlock, atOnce->lastBlock);
      }
    }
  }
}

TEST(KLVPacketTest, APacketThatRunsPastTheEndIsNotTakenForTheOneBeforeIt) {
  const Bytes first = Packet(kPrimerPackKey, Bytes().Fill(7));
  ParseMetaData reader(Bytes(first).Raw(Packet(kPrimerPackKey, Bytes().Fill(7), 8)).Stream());
  ObedientPacket packet;
  ASSERT_TRUE(reader.ParsePacket(&packet));
  EXPECT_FALSE(reader.ParsePacket(&packet));
  EXPECT_EQ(kHeadSize, packet.importedAt);
  EXPECT_EQ(packet.NextOffset(), static_cast<unsigned long long>(reader.offset()));
  EXPECT_EQ(PacketHead::PastEnd, reader.ReadKeyAndLength(&packet));
  EXPECT_EQ(first.Size(), packet.NextOffset());
}

TEST(KLVPacketTest, OnlyImportablePacketsAreImportedAndAnyFailureLeavesTheReaderAtTheKey) {
  const auto isParsed = [](const Bytes& key, std::size_t length, unsigned int status) {
    const Bytes file = Packet(key, Bytes().Fill(length));
    ParseMetaData reader(file.Stream());
    ObedientPacket packet;
    packet.status = status;
    const bool result = reader.ParsePacket(&packet);
    EXPECT_EQ(result ? file.Size() : 0, static_cast<unsigned long long>(reader.offset()));
    EXPECT_EQ(packet.isImportable() ? kHeadSize : -1, packet.importedAt);
    EXPECT_EQ(file.Size(), packet.NextOffset());
    return result;
  };
  EXPECT_TRUE(isParsed(kPrimerPackKey, 0, kStatusOK));
  EXPECT_TRUE(isParsed(kPrimerPackKey, 7, 0x00130000));
  EXPECT_FALSE(isParsed(kPrimerPackKey, 7, kStatusNoInput));
  EXPECT_FALSE(isParsed(kHeaderPackKey, 7, kStatusOK));
  EXPECT_FALSE(isParsed(kPrimerPackKey, 7, ObedientPacket::kShortOfMemory));
  EXPECT_FALSE(isParsed(kPrimerPackKey, 7, ObedientPacket::kWithoutReader));
}

}  // namespace
