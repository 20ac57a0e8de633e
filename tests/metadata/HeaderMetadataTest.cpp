#include "metadata/HeaderMetadata.h"

#include <gtest/gtest.h>

#include "tests/support/Bytes.h"

namespace {

// Kinds of sets, and the instance UIDs of the small header.
constexpr unsigned int kPreface = 0x012F, kAnyKind = 0x0130, kMaterial = 0x0136, kSource = 0x0137, kMultiple = 0x0144;
constexpr unsigned long long kStorageUID = 2, kMaterialUID = 3, kSourceUID = 4, kTrackUID = 5, kSequenceUID = 6,
                             kClipUID = 7, kDescriptorUID = 8, kNowhere = 99;

class HeaderMetadataTest : public testing::Test {
 protected:
  OxSharedPtr<STMetadataSets> Add(unsigned int kind, unsigned long long uid, const Bytes& items) {
    const auto set = Imported<STMetadataSets>(SetKey(kind), Bytes().Item(0x3C0A, Uid(uid)).Raw(items));
    EXPECT_EQ(kStatusUnreadable, header->AddMetadata(set)) << "so it says of every set";
    return set;
  }
  void AddPreface(std::initializer_list<unsigned long long> identifications, const Bytes& packages) {
    Add(kPreface, 1, Bytes().Item(0x3B06, References(identifications)).Item(0x3B03, Uid(kStorageUID)));
    Add(kAnyKind, kStorageUID, Bytes().Item(0x1901, packages).Item(0x1902, References({kNowhere, kDescriptorUID})));
  }
  void AddTrack(unsigned long long uid, unsigned long long sequence) {
    const Bytes numbers =
        Bytes().Item(0x4801, Bytes().U32(1)).Item(0x4804, Bytes().U32(0)).Item(0x4B02, Bytes().U64(0));
    Add(kAnyKind, uid, Bytes(numbers).Item(0x4B01, Bytes().U32(25).U32(1)).Item(0x4803, Uid(sequence)));
  }
  void AddSequence(unsigned long long uid, const Bytes& componentsItem) {
    Add(kAnyKind, uid, Bytes().Item(0x0201, Uid(50)).Item(0x0202, Bytes().U64(10)).Raw(componentsItem));
  }
  void AddClip(unsigned long long uid, unsigned long long package, unsigned int track) {
    Add(kAnyKind, uid, Bytes().Item(0x1101, Umid(package)).Item(0x1102, Bytes().U32(track)));
  }
  void AddSource(unsigned long long uid, unsigned long long umid, unsigned long long descriptor) {
    Add(kSource, uid, Bytes().Item(0x4401, Umid(umid)).Item(0x4701, Uid(descriptor)));
  }
  void AddDescriptor(unsigned long long uid, unsigned int linkedTrack) {
    Add(kAnyKind, uid, Bytes().Item(0x3006, Bytes().U32(linkedTrack)));
  }
  void SetPrimer() { header->SetPrimerPack(Imported<PrimerPack>(kPrimerPackKey, Batch(0, 18))); }
  // One material package with one track of one clip, which points at track 2 of the package of UMID 1.
  void FillSmallHeader(std::initializer_list<unsigned long long> packages = {kMaterialUID, kSourceUID}) {
    SetPrimer();
    AddPreface({}, References(packages));
    Add(kMaterial, kMaterialUID, Bytes().Item(0x4403, References({kTrackUID})));
    AddTrack(kTrackUID, kSequenceUID);
    AddSequence(kSequenceUID, Bytes().Item(0x1001, References({kNowhere, kClipUID})));
    AddClip(kClipUID, 1, 2);
    AddSource(kSourceUID, 1, kDescriptorUID);
    EXPECT_EQ(kStatusOK, header->Analyze());
  }
  OxSharedPtr<STMetadataSets> Set(unsigned long long uid) {
    return header->MetadataForKey(new MxfUUID(Uid(uid).Data()));
  }
  OxSharedPtr<STTrack> Track(unsigned long long uid) { return header->CreateTrack(new MxfUUID(Uid(uid).Data())); }

  const OxSharedPtr<HeaderMetadata> header{new HeaderMetadata};
};

TEST_F(HeaderMetadataTest, TheFirstSetOfAUIDStaysAndTheLastPrefaceCounts) {
  const auto first = Add(kPreface, 1, Bytes().Item(0x3B05, {0, 1}));
  Add(kPreface, 1, Bytes().Item(0x3B05, {0, 2}));
  EXPECT_EQ("2", Text(header->PrefaceInfoForTag(0x3B05)));
  EXPECT_EQ(first.get(), Set(1).get());
  header->AddMetadata(Imported<STMetadataSets>(kIndexSegmentKey, Bytes().Item(0x3C0A, Uid(kNowhere))));
  EXPECT_FALSE(Set(kNowhere)) << "no structural set";
  header->AddMetadata(Imported<STMetadataSets>(SetKey(kPreface), Bytes().Item(0x3B05, {0, 3})));
  EXPECT_EQ("2", Text(header->PrefaceInfoForTag(0x3B05))) << "a preface without a UID is none";
  EXPECT_EQ(kStatusNoInput, header->AddMetadata({}));
  EXPECT_FALSE(header->MetadataForKey({}));
}

TEST_F(HeaderMetadataTest, AnalyzeFailsOnlyForWhatThePrefaceLacks) {
  EXPECT_EQ(kStatusOK, header->Analyze()) << "no preface at all";
  Add(kPreface, 20, Bytes().Item(0x3B03, Uid(kStorageUID)));
  EXPECT_EQ(kStatusUnreadable, header->Analyze()) << "no identifications";
  Add(kPreface, 21, Bytes().Item(0x3B06, References({})));
  EXPECT_EQ(kStatusUnreadable, header->Analyze()) << "no content storage reference";
  Add(kPreface, 22, Bytes().Item(0x3B06, References({})).Item(0x3B03, Uid(kNowhere)));
  EXPECT_EQ(kStatusOK, header->Analyze()) << "a content storage that is not there";
}

TEST_F(HeaderMetadataTest, ADescriptorMustBeLinkedToTheTrack) {
  FillSmallHeader();
  EXPECT_FALSE(header->GetDescriptor(Set(kClipUID))) << "no descriptor";
  AddDescriptor(kDescriptorUID, 3);
  EXPECT_FALSE(header->GetDescriptor(Set(kClipUID))) << "linked to another track";
  EXPECT_TRUE(HeaderMetadata::isMatchDescriptor(Set(kDescriptorUID), 3));
  EXPECT_FALSE(HeaderMetadata::isMatchDescriptor(Add(kAnyKind, 61, {}), 0)) << "linked to none";
  EXPECT_FALSE(HeaderMetadata::isMatchDescriptor({}, 0));
}

TEST_F(HeaderMetadataTest, OfSeveralDescriptorsTheFirstThatIsLinkedWinsAndNeverTheirList) {
  FillSmallHeader();
  Add(kMultiple, kDescriptorUID,
      Bytes().Item(0x3006, Bytes().U32(2)).Item(0x3F01, References({kNowhere, kClipUID, 63, 62, 61})));
  EXPECT_FALSE(header->GetDescriptor(Set(kClipUID)));
  AddDescriptor(61, 2);
  AddDescriptor(62, 2);
  AddDescriptor(63, 1);
  EXPECT_EQ(Set(62).get(), header->GetDescriptor(Set(kClipUID)).get());
}

TEST_F(HeaderMetadataTest, OfTwoPackagesWithOneUMIDTheFirstListedWins) {
  AddSource(70, 1, 71);
  AddDescriptor(71, 3);
  AddDescriptor(kDescriptorUID, 2);
  FillSmallHeader({70, kSourceUID});
  EXPECT_EQ(Set(70).get(), header->SourcePackageForUMID(Set(kClipUID)->UMIDForTag(0x1101)).get());
  EXPECT_FALSE(header->GetDescriptor(Set(kClipUID))) << "the other package, which has the descriptor, is not asked";
}

TEST_F(HeaderMetadataTest, ATrackNeedsEveryLinkButItsComponents) {
  AddTrack(80, kNowhere);
  AddTrack(81, 82);
  AddSequence(82, {});
  AddTrack(83, 84);
  Add(kAnyKind, 84, Bytes().Item(0x0201, Uid(50)).Item(0x1001, References({kClipUID})));
  AddDescriptor(kDescriptorUID, 2);
  EXPECT_FALSE(Track(kTrackUID)) << "no primer";
  FillSmallHeader();
  header->SetPrimerPack({});  // ignored
  const auto track = header->TrackForIndex(0, 0);
  ASSERT_TRUE(track);
  EXPECT_EQ(2u, track->ComponentCount()) << "the one that is not there keeps its place";
  EXPECT_EQ("(none)", Text(track->ValueForTag(0x3006, 0)));
  EXPECT_EQ("2", Text(track->ValueForTag(0x3006, 1)));
  EXPECT_FALSE(header->TrackForIndex(1, 0) || header->TrackForIndex(0, 1));
  EXPECT_FALSE(Track(80)) << "no sequence";
  EXPECT_FALSE(Track(81)) << "no list of components";
  EXPECT_FALSE(Track(83)) << "no duration";
  EXPECT_FALSE(Track(kSequenceUID) || Track(kNowhere) || header->CreateTrack({})) << "no track set";
}

// As many as a list in a set of 2-byte lengths holds. One look at each package for each component would be 17 million.
TEST_F(HeaderMetadataTest, PackagesThatShareAMultipleDescriptorDoNotMultiplyIt) {
  constexpr unsigned int kMany = (0xFFFF - 8) / 16;
  constexpr unsigned long long kClips = 10000, kPackages = 20000, kDescriptors = 30000;
  SetPrimer();
  AddTrack(kTrackUID, kSequenceUID);
  Bytes clips, packages, descriptors;
  for (unsigned int i = 0; i < kMany; ++i) {
    clips.Raw(Uid(kClips + i));
    packages.Raw(Uid(kPackages + i));
    descriptors.Raw(Uid(kDescriptors + i));
    AddClip(kClips + i, i, i);
    AddSource(kPackages + i, i, kDescriptorUID);
    AddDescriptor(kDescriptors + i, i);
  }
  Add(kMultiple, kDescriptorUID, Bytes().Item(0x3F01, Batch(kMany, 16, descriptors)));
  AddSequence(kSequenceUID, Bytes().Item(0x1001, Batch(kMany, 16, clips)));
  AddPreface({}, Batch(kMany, 16, packages));
  ASSERT_EQ(kStatusOK, header->Analyze());
  EXPECT_EQ(std::to_string(kMany - 1), Text(Track(kTrackUID)->ValueForTag(0x3006, kMany - 1)));
}

TEST_F(HeaderMetadataTest, FourThousandComponentsFindTheirOwnOfFourThousandPackages) {
  constexpr unsigned int kMany = (0xFFFF - 8) / 16;
  constexpr unsigned long long kClips = 10000, kPackages = 20000, kDescriptors = 30000;
  SetPrimer();
  AddTrack(kTrackUID, kSequenceUID);
  Bytes clips, packages;
  for (unsigned int i = 0; i < kMany; ++i) {
    clips.Raw(Uid(kClips + i));
    packages.Raw(Uid(kPackages + i));
    AddClip(kClips + i, kMany - i, i);
    AddSource(kPackages + i, kMany - i, kDescriptors + i);
    AddDescriptor(kDescriptors + i, i);
  }
  AddSequence(kSequenceUID, Bytes().Item(0x1001, Batch(kMany, 16, clips)));
  AddPreface({}, Batch(kMany, 16, packages));
  ASSERT_EQ(kStatusOK, header->Analyze());
  const auto track = Track(kTrackUID);
  ASSERT_EQ(kMany, track->ComponentCount());
  unsigned int wrong = 0;
  for (unsigned int i = 0; i < kMany; ++i) {
    unsigned int linkedTrack = ~0u;
    if (!GetValue(track->ValueForTag(0x3006, i), linkedTrack) || linkedTrack != i) ++wrong;
  }
  EXPECT_EQ(0u, wrong);
}

}  // namespace
