#include <future>
#include <map>

#include "tests/cache/CacheTestSupport.h"
#include "tests/support/AskEverything.h"
#include "tests/support/MemoryFile.h"
#include "tests/support/TestClip.h"

// A disk that fails, dawdles, or holds another file than it did. The query that meets it fails; nothing it met stays
// behind for the next one.

namespace {

using Numbers = std::map<About, unsigned long long>;

Numbers AnswersOf(MXFStream& clip, unsigned units) {
  Numbers answers;
  AskEverything(clip, [&](const About& about, unsigned long long number) { answers[about] = number; }, {units});
  return answers;
}

std::ptrdiff_t OpenDescriptors() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), std::filesystem::directory_iterator());
}

class FaultsTest : public CacheTest {
 protected:
  ~FaultsTest() override { EXPECT_EQ(m_descriptors, OpenDescriptors()) << "a descriptor leaked"; }

  const std::ptrdiff_t m_descriptors = OpenDescriptors();
};

// Segments of most of a block each, and ones before them that no longer count: passed over for a moment, the wrong one
// could be taken for good.
ClipOptions LongIndexClip(bool isIndexInHeader) {
  ClipOptions options = isIndexInHeader ? HeaderIndexClip() : SmallClip();
  options.recordFields = false;
  options.partitionUnits = {2500, 2500};
  if (isIndexInHeader) options.partitionUnits = {9000};
  options.segmentUnits = 3000;
  options.staleSegments = isIndexInHeader ? 0 : 2;
  options.dataBytes = 96;
  options.essence = clipwriter::Essence::Holes;
  return options;
}

constexpr unsigned kOther = 2400;  // an edit unit that is far from the first
const auto kLast = [](MXFStream& clip) { return static_cast<unsigned>(clip.Duration() - 1); };

// The bytes that `ask(buffer)` counts, as a number.
template <class Ask>
unsigned long long BytesOf(Ask ask) {
  unsigned char buffer[4096] = {};
  const auto count = static_cast<unsigned>(ask(buffer));
  return count > 0 ? DigestOf(buffer, count) : kNoAnswer;
}
unsigned long long NumberOf(unsigned status, unsigned long long number) {
  return status == kStatusOK ? number : kNoAnswer;
}

const struct Query {
  const char* name;
  unsigned long long (*ask)(MXFStream&);
} kQueries[] = {
    {"ReadRandomIndexPack", [](auto& c) { return NumberOf(c.ReadRandomIndexPack(), 1); }},
    {"ConstructBodyPartitionArray", [](auto& c) { return NumberOf(c.ConstructBodyPartitionArrayFromStream(), 1); }},
    {"ParseHeaderPartition", [](auto& c) { return NumberOf(c.ParseHeaderPartition(), 1); }},
    {"GetUserBit", [](auto& c) { return BytesOf([&](auto* b) { return c.GetUserBit(b) == kStatusOK ? 4 : 0; }); }},
    {"GetPackageCreationDate",
     [](auto& c) { return BytesOf([&](auto* b) { return c.GetPackageCreationDate(b) == kStatusOK ? 16 : 0; }); }},
    {"GetAudioChannel",
     [](auto& c) { return BytesOf([&](auto* b) { return c.GetAudioChannel(b) == kStatusOK ? 1 : 0; }); }},
    {"GetImageStabilizer",
     [](auto& c) {
       OxSharedPtr<OxNumber> state;
       const unsigned status = c.GetImageStabilizer(&state);
       return NumberOf(status, state ? state->UInt64Value() : 99);
     }},
    {"GetDataItem",
     [](auto& c) {
       const auto data = c.GetDataItem(kLast(c));
       return data.empty() ? kNoAnswer : DigestOf(data.data(), data.size());
     }},
    {"GetEssenceOffset",
     [](auto& c) {
       unsigned long long offset = 0;
       const unsigned status = c.GetEssenceOffset(kOther, 1, offset);
       return NumberOf(status, offset);
     }},
    {"RangeEssenceData",
     [](auto& c) {
       const _OxRange range = c.RangeEssenceData(kLast(c), 1);
       return range.length > 0 ? range.location : kNoAnswer;
     }},
    {"ReadEssenceData", [](auto& c) { return BytesOf([&](auto* b) { return c.ReadEssenceData(0, 1, b, 4096); }); }},
    {"ReadEssenceData of the last",
     [](auto& c) { return BytesOf([&](auto* b) { return c.ReadEssenceData(kLast(c), 0, b, 4096); }); }},
    {"GetFlagsAtIndex",
     [](auto& c) {
       unsigned char flags = 0;
       return c.GetFlagsAtIndex(kOther, flags) ? flags : kNoAnswer;
     }},
    {"GetTemporalOffsetAtIndex",
     [](auto& c) {
       signed char offset = 0;
       return c.GetTemporalOffsetAtIndex(kLast(c), offset) ? static_cast<unsigned char>(offset) : kNoAnswer;
     }},
    {"GetKeyOffsetAtIndex",
     [](auto& c) {
       signed char offset = 0;
       return c.GetKeyOffsetAtIndex(0, offset) ? static_cast<unsigned char>(offset) : kNoAnswer;
     }},
    {"GetEditUnitInfo",
     [](auto& c) {
       signed char temporal = 0, key = 0;
       unsigned char flags = 0;
       return c.GetEditUnitInfo(kOther, temporal, key, flags) ? flags : kNoAnswer;
     }},
    {"ReadIndexTable", [](auto& c) { return NumberOf(c.ReadIndexTable(kLast(c)), 1); }},
    {"ReadIndexTableAtPartition", [](auto& c) { return NumberOf(c.ReadIndexTableAtPartition(0), 1); }},
    {"ReadBodyPartitionInfo", [](auto& c) { return NumberOf(c.ReadBodyPartitionInfo(0), 1); }},
    {"GetIndexFromPartition",
     [](auto& c) {
       const OxSharedPtr<OxArray> segments = c.GetIndexFromPartition(c.GetHeaderPartitionPack()->FooterPartition());
       return segments ? segments->Count() : kNoAnswer;
     }},
};

// For each n, until the query reads less often.
TEST_F(FaultsTest, AQueryThatMeetsAFaultFailsAndIsRightAfterwards) {
  TestDisk disk;
  for (const bool isIndexInHeader : {false, true}) {
    const std::string path = folder.Path("clip");
    const clipwriter::Clip truth = clipwriter::WriteClipFile(LongIndexClip(isIndexInHeader), path);
    for (const Query& query : kQueries) {
      // There is none at a partition, and one that is loaded is not found again.
      if (isIndexInHeader && std::string(query.name).find("ReadIndexTable") == 0) continue;
      unsigned long long right = kNoAnswer;
      bool isFault = true;
      for (int n = 0; n < 2 || isFault; ++n) {
        MXFStream clip(CreateOxString(path));
        ASSERT_EQ(kStatusOK, clip.Parse());
        FBCMemoryCacheManager::DeactivateInstance();  // what Parse read is read again
        disk.preads = 0;
        disk.failedPread = n;
        const unsigned long long answer = query.ask(clip);
        isFault = n > 0 && disk.preads >= n;
        disk.failedPread = 0;
        if (n == 0) right = answer;
        EXPECT_EQ(isFault ? kNoAnswer : right, answer) << query.name << ", fault " << n;
        EXPECT_EQ(right, query.ask(clip)) << query.name << ", after fault " << n;
        for (const unsigned unit : {0u, 1300u, kOther, kLast(clip)}) {  // neither has it spoiled another's index
          unsigned long long offset = 0;
          EXPECT_EQ(kStatusOK, clip.GetEssenceOffset(unit, 1, offset)) << query.name << ", after fault " << n;
          EXPECT_EQ(truth.ElementAt(unit, 1).offset, offset) << query.name << ", after fault " << n;
        }
        EXPECT_EQ(640u, FBCMemoryCacheManager::GetInstance()->BlockCount());
      }
      EXPECT_NE(kNoAnswer, right) << query.name;
    }
  }
  EXPECT_EQ(0, disk.openFiles);
}

TEST_F(FaultsTest, AClipThatMeetsAFaultWhileItOpensDoesNotOpen) {
  TestDisk disk;
  for (const bool isListed : {true, false}) {
    ClipOptions options = LongIndexClip(false);
    if (!isListed) WithoutRandomIndex(options);
    const std::string path = folder.Path("clip");
    clipwriter::WriteClipFile(options, path);
    int n = 0;
    do {
      FBCMemoryCacheManager::DeactivateInstance();
      disk.preads = 0;
      disk.failedPread = ++n;
      const bool isOpen = MXFStream(CreateOxString(path)).Parse() == kStatusOK;
      EXPECT_EQ(disk.preads < n, isOpen) << "fault " << n;
    } while (disk.preads >= n);
    EXPECT_LT(2, n);
  }
}

TEST_F(FaultsTest, InterruptedShortReadsChangeNoAnswer) {
  TestClip clip(SmallClip());
  ASSERT_EQ(kStatusOK, clip.Open());
  const Numbers right = AnswersOf(*clip, 25);
  TestDisk disk;
  disk.isFitful = true;
  ASSERT_EQ(kStatusOK, clip.Open());
  EXPECT_TRUE(AnswersOf(*clip, 25) == right);
}

// The file is cut after it was opened, every few kilobytes, and whole again for the next question.
TEST_F(FaultsTest, AFileThatShrinksGivesItsOwnAnswersOrNoneAndRecovers) {
  ClipOptions options = SmallClip();
  clipwriter::MemorySink sink;
  clipwriter::WriteClip(options, sink);
  const MemoryFile file(sink.bytes);
  const auto open = [&] {
    auto clip = std::make_unique<MXFStream>(CreateOxString(file.Path()));
    EXPECT_EQ(kStatusOK, clip->Parse());
    FBCMemoryCacheManager::DeactivateInstance();
    return clip;
  };
  const Numbers right = AnswersOf(*open(), 25);
  for (std::size_t size = 0; size < sink.bytes.size(); size += 4000) {
    const auto clip = open();
    file.Resize(size);
    for (const auto& [about, number] : AnswersOf(*clip, 25)) {
      const auto same = right.find(about);
      const bool isNone = number == kNoAnswer || number == 0 || number == 0x7FFFFFFFFFFFFFFF ||
                          number == kStatusUnreadable || number == DigestOf(nullptr, 0);
      EXPECT_TRUE(isNone || (same != right.end() && same->second == number)) << about.Text() << " cut at " << size;
    }
    file.Write(size, &sink.bytes[size], sink.bytes.size() - size);
    EXPECT_TRUE(AnswersOf(*clip, 25) == right) << "whole again after " << size;
  }
}

TEST_F(FaultsTest, AFileThatGrowsGivesTheAnswersOfTheFileAsItWasOpened) {
  clipwriter::MemorySink sink;
  clipwriter::WriteClip(SmallClip(), sink);
  const MemoryFile file(sink.bytes);
  MXFStream clip(CreateOxString(file.Path()));
  file.Resize(sink.bytes.size() + 1000);
  file.Write(sink.bytes.size() + 1000, sink.bytes.data(), sink.bytes.size());
  ASSERT_EQ(kStatusOK, clip.Parse());
  const MemoryFile copy(sink.bytes);
  MXFStream whole(CreateOxString(copy.Path()));
  ASSERT_EQ(kStatusOK, whole.Parse());
  EXPECT_TRUE(AnswersOf(clip, 25) == AnswersOf(whole, 25));
}

TEST_F(FaultsTest, ASlowReadKeepsNoOtherClipWaiting) {
  TestClip slow(SmallClip()), other(SmallClip());
  ASSERT_EQ(kStatusOK, slow.Open());
  ASSERT_EQ(kStatusOK, other.Open());
  FBCMemoryCacheManager::DeactivateInstance();
  std::promise<void> isReading, mayGoOn;
  std::atomic<bool> isFirst{true};
  TestDisk disk;
  disk.beforePread = [&] {
    if (!isFirst.exchange(false)) return;
    isReading.set_value();
    mayGoOn.get_future().wait();
  };
  auto answer = std::async(std::launch::async, [&] { return slow.Answer(3); });
  isReading.get_future().wait();
  EXPECT_EQ("right", other.Answer(3));
  mayGoOn.set_value();
  EXPECT_EQ("right", answer.get());
}

}  // namespace
