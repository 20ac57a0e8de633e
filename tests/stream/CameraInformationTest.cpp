#include "tests/support/TestClip.h"

namespace {

// User bits, creation date, sound elements, stabilizer, bit rate: the value, "-" when none was written, or "fails".
std::string Information(TestClip& clip) {
  std::array<unsigned char, 4> bits{};
  std::array<unsigned char, 16> date{};
  unsigned char sounds = 0;
  OxSharedPtr<OxNumber> state, rate;
  const unsigned status[] = {clip->GetUserBit(bits.data()), clip->GetPackageCreationDate(date.data()),
                             clip->GetAudioChannel(&sounds), clip->GetImageStabilizer(&state),
                             clip->GetVideoBitRate(&rate)};
  const std::string values[] = {
      bits == clip.truth.options.userBits ? "bits" : "-", date == clip.truth.options.creationDate ? "date" : "-",
      sounds > 0 ? std::to_string(sounds) : "-", state ? std::to_string(state->UInt8Value()) : "-",
      rate ? std::to_string(rate->UInt32Value()) : "-"};
  std::string text;
  for (unsigned i = 0; i < 5; ++i) text += (status[i] == kStatusOK ? values[i] : "fails") + " ";
  return text;
}

// A number within the value of the first package metadata set.
void PatchMetadata(TestClip& clip, std::uint64_t place, std::uint64_t value, unsigned width) {
  clip.Patch(clip.PacketAt("package metadata") + 20 + place, value, width);
}

// The first sub-descriptor list gets a second reference, to a sound descriptor with a bit rate of its own, in place of
// the items behind it.
void AddSubDescriptor(TestClip& clip) {
  const std::uint64_t list = clip.ItemAt("Descriptor", 0x8080), behind = list + 4 + 8 + 16;
  const std::uint64_t rest = clip.NextPacket(clip.PacketAt("Descriptor", 1)) - (behind + 16);
  const std::uint64_t rate = clip.ItemAt("Descriptor", 0x3D07);
  clip.Patch(list + 2, 8 + 2 * 16, 2).Patch(list + 4, 2, 4).Copy(clip.PacketAt("Descriptor", 2) + 24, behind, 16);
  clip.Patch(behind + 16, 0x7FFF, 2).Patch(behind + 18, rest - 4, 2);  // an unknown item
  clip.Patch(rate, 0x8007, 2).Patch(rate + 4, 1234, 4);
}

TEST(CameraInformationTest, IsToldAsFarAsTheClipCarriesIt) {
  const struct {
    const char* name;
    void (*adjust)(ClipOptions&);
    void (*damage)(TestClip&);
    const char* information;
  } kRows[] = {
      {"the stabilizer's record is the last", nullptr, nullptr, "bits date 2 2 50000000 "},
      {"two stabilizer records", [](auto& o) { o.cameraRecords[0][0] = 2, o.cameraRecords[0][1] = 0xDF; }, nullptr,
       "bits date 2 1 50000000 "},
      {"no stabilizer record", [](auto& o) { o.cameraRecords[2][0] = 1; }, nullptr, "bits date 2 - 50000000 "},
      {"no records", [](auto& o) { o.cameraRecords.clear(); }, nullptr, "bits date 2 - 50000000 "},
      {"no item 0x88", [](auto& o) { o.cameraMetadata = false; }, nullptr, "bits date 2 - 50000000 "},
      {"item 0x88 of length 0", nullptr, [](auto& c) { PatchMetadata(c, 68, 0, 2); }, "bits date 2 - 50000000 "},
      {"another label", nullptr, [](auto& c) { PatchMetadata(c, 70, 0, 2); }, "bits date 2 - 50000000 "},
      // What follows would be a stabilizer's record.
      {"no metadata", nullptr, [](auto& c) { PatchMetadata(c, 86, 0x000102, 3); }, "bits date 2 - 50000000 "},
      {"no package metadata", [](auto& o) { o.packageMetadata = false; }, nullptr, "bits date 2 fails 50000000 "},
      {"no system item", [](auto& o) { o.systemItem = false; }, nullptr, "- - 2 fails 50000000 "},
      {"one sound element", [](auto& o) { o.soundElements = 1; }, nullptr, "bits date 1 2 50000000 "},
      {"data in place of sound", [](auto& o) { o.soundElements = 0, o.dataBytes = 96; }, nullptr,
       "bits date - 2 50000000 "},
      {"two tracks", [](auto& o) { o.soundElements = 0; }, nullptr, "bits date fails 2 fails "},
      {"no sub-descriptor", [](auto& o) { o.bitRate = 0; }, nullptr, "bits date 2 2 fails "},
      {"the last of two sub-descriptors", nullptr, AddSubDescriptor, "bits date 2 2 1234 "},
  };
  for (const auto& row : kRows) {
    ClipOptions options = SmallClip();
    if (row.adjust) row.adjust(options);
    TestClip clip(options);
    if (row.damage) row.damage(clip);
    ASSERT_EQ(kStatusOK, clip.Open()) << row.name;
    EXPECT_EQ(row.information, Information(clip)) << row.name;
    EXPECT_EQ(options.dataBytes, clip->GetDataItem(0).size()) << row.name;
  }
}

TEST(CameraInformationTest, SequenceInformationIsDecodedWhereverItLies) {
  TestClip clip(SmallClip());
  ASSERT_EQ(kStatusOK, clip.Open());
  const auto offset = static_cast<long long>(clip.PacketAt("StreamFileSequenceInfo"));
  for (const auto& info : {clip->GetStreamFileSequenceInfo(), clip->GetStreamFileSequenceInfoAtOffset(offset)}) {
    EXPECT_TRUE(info && info->StartTimecode()->SInt64Value() == 90000);
  }
  for (const long long elsewhere : {0LL, offset + 1, 1LL << 40, -1LL}) {
    EXPECT_FALSE(clip->GetStreamFileSequenceInfoAtOffset(elsewhere)) << elsewhere;
  }
}

}  // namespace
