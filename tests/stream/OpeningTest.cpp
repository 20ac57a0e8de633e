#include "foundation/UUIDDefine.h"
#include "tests/support/TestClip.h"

namespace {

using clipwriter::PictureSet;

TEST(OpeningTest, AnEmptyPathThrowsAndAMissingFileFailsToParse) {
  EXPECT_THROW(MXFStream(OxSharedPtr<OxStringMac>()), const char*);
  MXFStream clip(CreateOxString("/nonexistent/clip.mxf"));
  EXPECT_EQ(kStatusUnreadable, clip.Parse());
  unsigned char byte = 0;
  EXPECT_EQ(0u, clip.ReadEssenceData(0, 0, &byte, 1));
  EXPECT_EQ(kStatusUnreadable, clip.ReadIndexTable(0));
  EXPECT_FALSE(clip.GetHeaderPartitionPack());
}

TEST(OpeningTest, WhateverGoesWrongTheConstructorThrowsItsOwnText) {
  static bool isMemoryShort = false;
  const ReadOnlyFile::SystemCalls former = ReadOnlyFile::UseSystemCalls({});
  const auto open = [](const char*, int) -> int {
    if (isMemoryShort) throw std::bad_alloc();
    throw static_cast<const char*>("another text");
  };
  ReadOnlyFile::UseSystemCalls({open, former.fstat, former.pread, former.close});
  for (const bool isShort : {false, true}) {
    isMemoryShort = isShort;
    std::string text;
    try {
      MXFStream(CreateOxString("clip.mxf"));
    } catch (const char* thrown) {
      text = thrown;
    }
    EXPECT_EQ("MXFStream init error", text);
  }
  ReadOnlyFile::UseSystemCalls(former);
}

TEST(OpeningTest, ADamagedHeaderFailsAndListsNothing) {
  const struct {
    const char* name;
    void (*damage)(TestClip&);
  } kRows[] = {
      {"no SMPTE key at the start", [](auto& c) { c.Patch(0, 0x070E2B34, 4); }},
      {"the header partition pack past the end", [](auto& c) { c.PatchLength(0, kPastEnd); }},
      {"a scan over fill to a packet past the end",
       [](auto& c) { c.PatchLength(c.NextPacket(0), kPastEnd).Copy(c.NextPacket(0), 0, 16); }},
      {"no header bytes", [](auto& c) { c.PatchPack(0, kHeaderByteCount, 0); }},
      {"header bytes beyond 64 bits", [](auto& c) { c.PatchPack(0, kHeaderByteCount, ~0ull); }},
      {"a KAG that ends beyond the file", [](auto& c) { c.PatchPack(0, kKagSize, ~0ull); }},
      {"a partition and KAG beyond 64 bits", [](auto& c) { c.PatchPack(0, kThisPartition, ~0ull); }},
      {"a set past the end", [](auto& c) { c.PatchLength(c.PacketAt("SourcePackage"), kPastEnd); }},
  };
  for (const auto& row : kRows) {
    TestClip clip(SmallClip());
    row.damage(clip);
    EXPECT_EQ(kStatusUnreadable, clip.Open()) << row.name;
    EXPECT_EQ(0u, clip->GetHeaderMetadata()->MaterialPackageCount()) << row.name;
    EXPECT_EQ("none", clip.Answer(0)) << row.name;
  }
}

TEST(OpeningTest, ADamagedSetKeepsTheSetsBeforeItButNothingIsListed) {
  TestClip clip(SmallClip());
  clip.Patch(clip.ItemAt("SourcePackage", 0x4401) + 2, 0xFFFF, 2);  // longer than the set
  EXPECT_EQ(kStatusUnreadable, clip.Open());
  const auto isKept = [&](const char* name) {  // by the instance UID, the first item's value
    const OxSharedPtr<MxfUUID> uid(new MxfUUID(clip.At(clip.PacketAt(name) + 24)));
    return static_cast<bool>(clip->GetHeaderMetadata()->MetadataForKey(uid));
  };
  EXPECT_TRUE(isKept("Preface") && isKept("MaterialPackage"));
  EXPECT_FALSE(isKept("SourcePackage") || isKept("SubDescriptor"));
  EXPECT_EQ(0u, clip->GetHeaderMetadata()->IdentificationCount());
  EXPECT_EQ(0u, clip->GetHeaderMetadata()->MaterialPackageCount());
}

TEST(OpeningTest, ADurationOfZeroOrUnknownOpensAndAnswersNothing) {
  for (const long long duration : {0, -1}) {
    ClipOptions options = SmallClip();
    options.duration = duration;
    TestClip clip(options);
    ASSERT_EQ(kStatusOK, clip.Open());
    EXPECT_EQ(duration, clip->Duration());
    const CountedReads reads;
    unsigned char date[16];
    EXPECT_EQ("none", clip.Answer(0));
    EXPECT_EQ(kStatusUnreadable, clip->GetPackageCreationDate(date));
    EXPECT_TRUE(clip->GetDataItem(0).empty());
    EXPECT_EQ(kStatusUnreadable, clip->ReadIndexTableFromPartition(0));
    EXPECT_EQ(0, CountedReads::s_count);
  }
}

TEST(OpeningTest, TheLastPictureDescriptorTellsTheKind) {
  for (const auto& [picture, later, kind] : {std::tuple(PictureSet::CDCI, 0x47u, 0u),
                                             {PictureSet::RGBA, 0x47u, 1u},
                                             {PictureSet::CDCI, 0x29u, 1u},
                                             {PictureSet::RGBA, 0x28u, 0u}}) {
    ClipOptions options = SmallClip();
    options.picture = picture;
    TestClip clip(options);
    clip.Patch(clip.PacketAt("Descriptor", 3) + 14, later, 1);  // the class of a sound descriptor, in its key
    ASSERT_EQ(kStatusOK, clip.Open());
    EXPECT_EQ(kind, clip->GetEssenceDescriptor());
  }
}

// The fill item behind the primer becomes one without labels.
TEST(OpeningTest, ALaterPrimerReplacesTheEarlierOne) {
  for (const bool isReplaced : {false, true}) {
    TestClip clip(SmallClip());
    const std::uint64_t primer = clip.PacketAt("PrimerPack");
    if (isReplaced) clip.Copy(primer, clip.NextPacket(primer), 16);
    ASSERT_EQ(kStatusOK, clip.Open());
    const OxSharedPtr<STTrack> track = clip->GetHeaderMetadata()->TrackForIndex(1, 0);
    ASSERT_TRUE(track);
    EXPECT_EQ(isReplaced, !track->ValueForUUID(FBC_UL_MER_BitRate, 0));
  }
}

// Pictures are MPEG-2, which begins with a start code. The last two have no index where it is looked for.
TEST(OpeningTest, ClipsOfOtherWritersAreOpenedAndTheirPicturesFound) {
  const struct {
    const char* name;
    unsigned duration, tracks, pictures;
  } kRows[] = {{"rdd9-1080i25-3parts-2ch.mxf", 75, 4, 75},
               {"rdd9-1080i2997-1part-4ch-anc.mxf", 60, 7, 60},
               {"rdd9-v13-1080i25-3parts-2ch.mxf", 75, 4, 0},
               {"ffmpeg-op1a-2ch.mxf", 50, 3, 0}};
  if (!std::filesystem::exists(CLIPPARSER_SHARED_CLIPS)) GTEST_SKIP() << "no " << CLIPPARSER_SHARED_CLIPS;
  for (const auto& row : kRows) {
    MXFStream clip(CreateOxString((std::string(CLIPPARSER_SHARED_CLIPS "/") + row.name).c_str()));
    ASSERT_EQ(kStatusOK, clip.Parse()) << row.name;
    EXPECT_EQ(row.duration, clip.Duration()) << row.name;
    EXPECT_EQ(row.tracks, clip.GetHeaderMetadata()->TrackCount(0)) << row.name;
    unsigned pictures = 0;
    for (unsigned unit = 0; unit < row.duration; ++unit) {
      std::vector<unsigned char> picture(1 << 20, 0xEE);
      const unsigned size = clip.ReadEssenceData(unit, 1, picture.data(), 1 << 20);
      const bool isStartCode = picture[0] == 0 && picture[1] == 0 && picture[2] == 1;
      if (isStartCode && size == clip.RangeEssenceData(unit, 1).length) ++pictures;
    }
    EXPECT_EQ(row.pictures, pictures) << row.name;
  }
}

}  // namespace
