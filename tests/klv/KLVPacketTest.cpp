#include "klv/KLVPacket.h"

#include <gtest/gtest.h>

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
