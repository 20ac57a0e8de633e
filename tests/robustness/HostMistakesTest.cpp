#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <map>

#include "klv/LocalSets.h"
#include "klv/SystemMetadataPack.h"
#include "tests/cache/CacheTestSupport.h"
#include "tests/support/AskEverything.h"
#include "tests/support/TestClip.h"

// What a host can get wrong: names of what is no file, pointers to nothing, numbers out of range, questions at the
// wrong time.

namespace {

class HostMistakesTest : public CacheTest {};

// Root may read anything, so it steps down for the while.
class UnprivilegedUser {
 public:
  UnprivilegedUser() : m_user(::geteuid()) { m_isDone = m_user != 0 || ::seteuid(65534) == 0; }
  ~UnprivilegedUser() { m_isDone = ::seteuid(m_user) == 0; }
  bool isDone() const { return m_isDone; }

 private:
  const uid_t m_user;
  bool m_isDone;
};

TEST_F(HostMistakesTest, OnlyARegularFileThatMayBeReadIsOpened) {
  TestDisk disk;
  const std::string file = folder.PatternFile(0, 10), secret = folder.PatternFile(1, 10);
  std::filesystem::permissions(folder.Path(""), std::filesystem::perms(0755));
  std::filesystem::permissions(secret, std::filesystem::perms::none);
  ASSERT_EQ(0, ::mkfifo(folder.Path("pipe").c_str(), 0600));
  std::filesystem::create_symlink("nowhere", folder.Path("dangling"));
  std::filesystem::create_symlink("circle", folder.Path("circle"));
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  folder.Path("socket").copy(address.sun_path, sizeof address.sun_path - 1);
  const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
  ASSERT_EQ(0, ::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address));
  const std::pair<const char*, std::string> kRows[] = {
      {"no name", ""},
      {"a folder", folder.Path("")},
      {"nothing", folder.Path("missing")},
      {"a pipe", folder.Path("pipe")},
      {"a link to nothing", folder.Path("dangling")},
      {"a link to itself", folder.Path("circle")},
      {"a socket", folder.Path("socket")},
      {"a device", "/dev/null"},
      {"a device without end", "/dev/zero"},
      {"a file that may not be read", secret},
      {"a name longer than any", folder.Path(std::string(5000, 'x'))},
      {"bytes that are not UTF-8, and no file", folder.Path("\xC3\x28\xFF")},
      {"a zero at the end", file + '\0'},
      {"a zero inside", file + '\0' + "x"},
      {"a file as a folder", file + "/"},
  };
  {
    const UnprivilegedUser user;
    ASSERT_TRUE(user.isDone());
    for (const auto& [name, path] : kRows) {
      CacheFileStream stream;
      EXPECT_EQ(kStatusNoInput, stream.Init(CreateOxString(path))) << name;
      EXPECT_FALSE(stream.CanRead()) << name;
      MXFStream clip(CreateOxString(path));
      EXPECT_EQ(kStatusUnreadable, clip.Parse()) << name;
      EXPECT_FALSE(clip.GetStream()) << name;
    }
  }
  EXPECT_EQ(0, disk.openFiles);
  ::close(socket);
}

const OxSharedPtr<OxStream> kNoStream;
const OxSharedPtr<KLVPacket> kNoPacket;
const OxSharedPtr<STMetadataSets> kNoSet;
const OxSharedPtr<UMID> kNoUmid;
const OxSharedPtr<MxfUUID> kNoLabel;
constexpr unsigned kFar = 0xFFFFFFFF;

template <class Packet>
bool isImportRefused(MXFStream&) {
  Packet packet, copy{OxSharedPtr<KLVPacket>()};
  return packet.Import(kNoStream, 0) != kStatusOK && copy.Import(kNoStream, -1) != kStatusOK;
}

template <class Call>
std::string Thrown(Call call) {
  try {
    call();
  } catch (const char* text) {
    return text;
  }
  return "";
}

// Each is refused, whatever state the clip is in.
const struct {
  const char* mistake;
  bool (*isRefused)(MXFStream& clip);
} kMistakes[] = {
    {"GetUserBit: no output", [](auto& c) { return c.GetUserBit(nullptr) == kStatusUnreadable; }},
    {"GetPackageCreationDate: no output",
     [](auto& c) { return c.GetPackageCreationDate(nullptr) == kStatusUnreadable; }},
    {"GetAudioChannel: no output", [](auto& c) { return c.GetAudioChannel(nullptr) == kStatusUnreadable; }},
    {"GetImageStabilizer: no output", [](auto& c) { return c.GetImageStabilizer(nullptr) == kStatusUnreadable; }},
    {"GetVideoBitRate: no output", [](auto& c) { return c.GetVideoBitRate(nullptr) == kStatusUnreadable; }},
    {"ReadEssenceData: no buffer", [](auto& c) { return c.ReadEssenceData(0, 1, nullptr, 4096) == 0; }},
    {"ReadEssenceData: no room",
     [](auto& c) {
       unsigned char byte = 7;
       return c.ReadEssenceData(0, 1, &byte, 0) == 0 && byte == 7;
     }},
    {"GetEssenceOffset: no such unit or element",
     [](auto& c) {
       unsigned long long offset = 7;
       return c.GetEssenceOffset(kFar, 0, offset) == kStatusUnreadable &&
              c.GetEssenceOffset(0, kFar, offset) == kStatusUnreadable && offset == 7;
     }},
    {"RangeEssenceData: no such unit", [](auto& c) { return c.RangeEssenceData(kFar, kFar).length == 0; }},
    {"GetDataItem: no such unit", [](auto& c) { return c.GetDataItem(kFar).empty(); }},
    {"GetEditUnitInfo: no such unit",
     [](auto& c) {
       signed char temporal = 7, key = 7;
       unsigned char flags = 7;
       return !c.GetEditUnitInfo(kFar, temporal, key, flags) && temporal == 7 && key == 7 && flags == 7;
     }},
    {"ReadIndexTable: no such unit", [](auto& c) { return c.ReadIndexTable(kFar) == kStatusUnreadable; }},
    {"ReadIndexTableAtPartition: none", [](auto& c) { return c.ReadIndexTableAtPartition(kFar) == kStatusUnreadable; }},
    {"ReadBodyPartitionInfo: none", [](auto& c) { return c.ReadBodyPartitionInfo(kFar) == kStatusUnreadable; }},
    {"GetIndexFromPartition: not there",
     [](auto& c) { return !c.GetIndexFromPartition(~0ull) && !c.GetIndexFromPartition(1); }},
    {"GetStreamFileSequenceInfoAtOffset: not there",
     [](auto& c) {
       return !c.GetStreamFileSequenceInfoAtOffset(-1) && !c.GetStreamFileSequenceInfoAtOffset(~0ull >> 1);
     }},
    {"HeaderMetadata: no such index",
     [](auto& c) {
       const auto header = c.GetHeaderMetadata();
       return header->TrackCount(kFar) == 0 && !header->TrackForIndex(0, kFar) && !header->TrackForIndex(kFar, 0) &&
              !header->IdentificationInfoForTag(0x3C01, kFar) && !header->EssenceContainerDataForTag(0x2701, kFar);
     }},
    {"HeaderMetadata: no reference",
     [](auto& c) {
       const auto header = c.GetHeaderMetadata();
       return !header->MetadataForKey(kNoLabel) && !header->CreateTrack(kNoLabel) && !header->GetDescriptor(kNoSet) &&
              !header->SourcePackageForUMID(kNoUmid) && !header->GetDescriptor(kNoUmid, 1) &&
              !HeaderMetadata::isMatchDescriptor(kNoSet, 1) && header->AddMetadata(kNoSet) != kStatusOK;
     }},
    {"STTrack: nothing given",
     [](auto&) {
       STTrack track;
       track.AddComponentAndDescriptor(kNoSet, kNoSet);
       track.SetPrimerPack(OxSharedPtr<PrimerPack>());
       return track.SetTrack(kNoSet) == kStatusNoInput && track.SetSequence(kNoSet) == kStatusNoInput &&
              !track.ValueForTag(0x0202, kFar) && !track.ValueForUUID(kNoLabel, 0);
     }},
    {"STMetadataSets: no label, no value",
     [](auto&) {
       STMetadataSets set;
       return !set.ValueForTag(0x3C0A) && !set.ValueForUUID(kNoLabel, OxSharedPtr<PrimerPack>());
     }},
    {"PartitionPack: no stream", isImportRefused<PartitionPack>},
    {"PrimerPack: no stream", isImportRefused<PrimerPack>},
    {"RandomIndexPack: no stream", isImportRefused<RandomIndexPack>},
    {"IndexTableSegment: no stream", isImportRefused<IndexTableSegment>},
    {"LocalSets: no stream", isImportRefused<LocalSets>},
    {"SystemMetadataPack: no stream", isImportRefused<SystemMetadataPack>},
    {"StreamFileSequenceInfo: no stream", isImportRefused<StreamFileSequenceInfo>},
    {"packets: no output, no such index",
     [](auto&) {
       unsigned short tag = 0;
       unsigned long long offset = 0;
       IndexTableSegment segment;
       return !SystemMetadataPack().CreationDate(nullptr) && !SystemMetadataPack().UserDate(nullptr) &&
              !PrimerPack().UIDToTag(&tag, nullptr) && !PrimerPack().UIDToTag(nullptr, nullptr) &&
              !PartitionPack().EssenceAtIndex(kFar) && !RandomIndexPack().GetOffsetAtIndex(kFar, offset) &&
              segment.ImportDeltaEntryArray(OxSharedPtr<LocalSets>()) == kStatusUnreadable &&
              segment.ImportIndexEntryArray(OxSharedPtr<LocalSets>()) == kStatusUnreadable;
     }},
    {"ParseMetaData: no stream, no packet, no output",
     [](auto& c) {
       ParseMetaData reader(kNoStream), open(c.GetStream());
       unsigned value = 0;
       return !reader.GetUInt32(&value) && !reader.ParsePacket(kNoPacket) && !reader.GetUMID() &&
              !open.GetUInt32(nullptr) && !open.GetBytes(nullptr, 4) && !open.GetBER(nullptr) &&
              !open.GetTimestamp(nullptr) && !open.GetRational(nullptr) && !open.ParsePacket(kNoPacket) &&
              !open.ParseKeyAndLength(kNoPacket) && !open.ParsePacketValue(kNoPacket);
     }},
    {"CacheFileStream: no buffer, no cache",
     [](auto& c) {
       const OxSharedPtr<CacheFileStream> stream = c.GetStream();
       stream->SetUseCache(nullptr);
       return stream->Read(nullptr, 1, 0, kOxStreamSeekFromStart) == 0 && stream->ReadFromCache(nullptr, 0, 1) == 0 &&
              stream->ReadFromFile(nullptr, 0, 1) == 0 && stream->ReadFromFileSub(0, 1, nullptr) == 0 &&
              !CacheFileStream::Create(OxSharedPtr<OxStringMac>());
     }},
    {"FBCMemoryCacheManager: no user",
     [](auto&) {
       FBCMemoryCacheManager* manager = FBCMemoryCacheManager::GetInstance();
       return manager->UpdateMemoryCache(nullptr) == kStatusOK && manager->removeCache(nullptr) == kStatusOK &&
              manager->cacheItemAtAccessPtr(nullptr, true) == nullptr;
     }},
    {"BodyPartitionArray: nothing given",
     [](auto&) {
       BodyPartitionArray array;
       array.AddBack(0);
       return array.SetFromRandomIndexPack(OxSharedPtr<RandomIndexPack>()) == kStatusNoInput &&
              array.SetBodyPartitionData(0, OxSharedPtr<PartitionPack>()) == kStatusRefused &&
              array.SetIndexTableSegment(0, 0, OxSharedPtr<IndexTableSegment>()) == kStatusRefused &&
              array.SetIndexTableSegment(kFar, 0, new IndexTableSegment) == kStatusRefused;
     }},
    {"values: no bytes",
     [](auto&) {
       UMID umid;
       umid.CorrectSerialArea(nullptr);
       _OxRange range = {0, 4};
       const unsigned char bytes[32] = {};
       return umid.SetData(nullptr, 32) != kStatusOK && umid.SetData(bytes, -1) != kStatusOK &&
              !umid.isEqualToUMID(kNoUmid) && !OxMemoryStream::CreateMemoryStreamPtr(kNoStream, range) &&
              MxfUUID(nullptr) == MxfUUID() && ULKey(nullptr).GetKeyType() == ULKey().GetKeyType() &&
              OxMutableArray().ObjectAtIndex(kFar) == nullptr &&
              Thrown([] { MDValue(nullptr, 4, MDValueType_Int32); }) == "MDValue Init Error";
     }},
    {"MXFStream: no path",
     [](auto&) { return Thrown([] { MXFStream clip{OxSharedPtr<OxStringMac>()}; }) == "MXFStream init error"; }},
};

TEST_F(HostMistakesTest, WhatIsNotThereIsRefusedBeforeAndAfterParsing) {
  TestClip good(SmallClip()), damaged(SmallClip());
  damaged.PatchPack(0, kHeaderByteCount, 0);
  ASSERT_EQ(kStatusOK, good.Open());
  ASSERT_EQ(kStatusUnreadable, damaged.Open());
  MXFStream untouched(CreateOxString(good.Path()));
  for (const auto& row : kMistakes) {
    EXPECT_TRUE(row.isRefused(untouched)) << row.mistake << ", before Parse";
    EXPECT_TRUE(row.isRefused(*damaged)) << row.mistake << ", after a failed Parse";
    EXPECT_TRUE(row.isRefused(*good)) << row.mistake;
  }
  EXPECT_EQ("right", good.Answer(3)) << "nothing of this changed the clip";
}

TEST_F(HostMistakesTest, AClipThatIsNotParsedAnswersNothing) {
  TestClip good(SmallClip()), damaged(SmallClip());
  damaged.PatchPack(0, kHeaderByteCount, 0);
  ASSERT_EQ(kStatusOK, good.Open());
  ASSERT_EQ(kStatusUnreadable, damaged.Open());
  MXFStream untouched(CreateOxString(good.Path()));
  for (MXFStream* clip : {&untouched, &*damaged}) {
    EXPECT_EQ(0, clip->Duration());
    AskEverything(*clip, [](const About& about, unsigned long long number) {
      static const std::set<std::string> kOfUnits = {"GetEssenceOffset", "GetFlagsAtIndex", "ReadEssenceData size"};
      const bool isOfUnit = kOfUnits.count(about.query) > 0;
      EXPECT_FALSE(isOfUnit && number != kNoAnswer && number != 0) << about.Text();
    });
  }
}

TEST_F(HostMistakesTest, ParsingAgainChangesNoAnswer) {
  TestClip clip(SmallClip());
  ASSERT_EQ(kStatusOK, clip.Open());
  std::map<About, unsigned long long> once, twice;
  AskEverything(*clip, [&](const About& about, unsigned long long number) { once[about] = number; });
  ASSERT_EQ(kStatusOK, clip->Parse());
  AskEverything(*clip, [&](const About& about, unsigned long long number) { twice[about] = number; });
  for (const auto& [about, number] : once) EXPECT_EQ(number, twice[about]) << about.Text();
}

}  // namespace
