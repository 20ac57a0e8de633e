#include "cache/CacheFileStream.h"

#include <fcntl.h>

#include <memory>

#include "foundation/Status.h"
#include "tests/cache/CacheTestSupport.h"

namespace {

class CacheFileStreamTest : public CacheTest {
 protected:
  TestDisk disk;
};

TEST_F(CacheFileStreamTest, AReadOverABlockEdgeReadsBothBlocksWhole) {
  StreamPtr stream = OpenPattern(0, 3 * kBlock);
  EXPECT_EQ(10, ReadPattern(*stream, 0, 10, 65530));
  const std::vector<std::pair<unsigned long long, long long>> expected = {{kBlock, 0}, {kBlock, 65536}};
  EXPECT_EQ(expected, disk.wanted);
}

TEST_F(CacheFileStreamTest, ARangeThatWasReadIsNotReadFromTheFileAgain) {
  StreamPtr stream = OpenPattern(0, 2 * kBlock);
  EXPECT_EQ(100, ReadPattern(*stream, 0, 100, 70000));
  EXPECT_EQ(4, ReadPattern(*stream, 0, 4, 70010));
  EXPECT_EQ(1, disk.preads);
}

TEST_F(CacheFileStreamTest, ReadsAreCutAtTheEndsOfTheFile) {
  const auto size = static_cast<long long>(2 * kBlock + 777);
  StreamPtr stream = OpenPattern(0, 2 * kBlock + 777);
  ASSERT_EQ(static_cast<unsigned long long>(size), stream->Length());
  EXPECT_EQ(size, ReadPattern(*stream, 0, 1'000'000, 0));
  EXPECT_EQ(5, ReadPattern(*stream, 0, 10, size - 5));
  EXPECT_EQ(0, ReadPattern(*stream, 0, 10, size));
  EXPECT_EQ(0, ReadPattern(*stream, 0, 10, -1));
  EXPECT_EQ(0, ReadPattern(*stream, 0, 0, 0));
}

TEST_F(CacheFileStreamTest, ElevenStreamsTakeTheCachesFromEachOtherAndReadTheirOwnBytes) {
  std::vector<StreamPtr> streams;
  for (unsigned int i = 0; i < 11; ++i) streams.push_back(OpenPattern(i, 1000));
  for (int round = 0; round < 3; ++round) {
    for (unsigned int i = 0; i < 11; ++i) EXPECT_EQ(1000, ReadPattern(*streams[i], i, 1000, 0));
  }
  EXPECT_EQ(33, disk.preads) << "each comes when its cache has just been taken";
  for (const unsigned int i : {1u, 0u, 1u, 10u, 3u}) EXPECT_EQ(1000, ReadPattern(*streams[i], i, 1000, 0));
  EXPECT_EQ(34, disk.preads) << "stream 0 took the cache of stream 2, which was the least recently used by then";
}

TEST_F(CacheFileStreamTest, StreamsReadOnAfterTheirCacheOrThePoolIsGone) {
  StreamPtr stream = OpenPattern(0, 1000);
  EXPECT_EQ(1000, ReadPattern(*stream, 0, 1000, 0));
  FBCMemoryCacheManager::GetInstance()->removeCache(stream.get());
  EXPECT_EQ(1000, ReadPattern(*stream, 0, 1000, 0));
  FBCMemoryCacheManager::DeactivateInstance();
  EXPECT_EQ(1000, ReadPattern(*stream, 0, 1000, 0));
  stream->EraseCache();
  EXPECT_EQ(1000, ReadPattern(*stream, 0, 1000, 0));
  EXPECT_EQ(3, disk.preads) << "the last read finds the stream's cache again";
}

TEST_F(CacheFileStreamTest, TheStepsOfAReadWorkOnlyWithACacheThatIsTheStreams) {
  StreamPtr stream = OpenPattern(0, 2 * kBlock);
  unsigned char bytes[8] = {};
  EXPECT_EQ(0u, stream->ReadFromFile(bytes, 0, 8)) << "none yet";
  FBCMemoryCacheManager::GetInstance()->UpdateMemoryCache(stream.get());
  EXPECT_EQ(0u, stream->ReadFromCache(bytes, 0, 8)) << "not cached";
  EXPECT_EQ(6u, stream->ReadFromFile(bytes, kBlock - 6, 8));
  EXPECT_EQ(6u, stream->ReadFromCache(bytes, kBlock - 6, 8));
  EXPECT_EQ(PatternAt(kBlock - 1, 0), bytes[5]);
  EXPECT_EQ(0u, stream->ReadFromCache(nullptr, 0, 8));
  EXPECT_EQ(0u, stream->ReadFromFile(bytes, 2 * kBlock, 8));
  FBCMemoryCacheManager::GetInstance()->removeCache(stream.get());
  StreamPtr other = OpenPattern(1, 2 * kBlock);
  EXPECT_EQ(8, ReadPattern(*other, 1, 8, 0)) << "through the same cache";
  EXPECT_EQ(0u, stream->ReadFromCache(bytes, 0, 8)) << "lent elsewhere";
  EXPECT_EQ(0u, stream->ReadFromFile(bytes, kBlock, 8));
  EXPECT_EQ(8, ReadPattern(*other, 1, 8, kBlock));
  FBCMemoryCacheManager::DeactivateInstance();
  EXPECT_EQ(0u, stream->ReadFromFile(bytes, 0, 8)) << "destroyed";
}

TEST_F(CacheFileStreamTest, ACacheOfTheCallersOwnIsUsedAndLeftAlive) {
  StreamPtr stream = OpenPattern(0, kBlock);
  const std::unique_ptr<FBCMemoryCache> own(FBCMemoryCache::Create());
  unsigned char byte = 0;
  stream->SetUseCache(own.get());
  EXPECT_EQ(1u, stream->ReadFromFile(&byte, 99, 1));
  EXPECT_EQ(PatternAt(99, 0), own->GetMemoryBufferAtFileOffset(0)[99]);
  EXPECT_EQ(1, ReadPattern(*stream, 0, 1, 99)) << "registers, and reads again";
  EXPECT_EQ(2, disk.preads);
}

TEST_F(CacheFileStreamTest, AStreamThatIsNotOpenReadsAndSeeksNothing) {
  CacheFileStream stream;
  unsigned char byte = 0;
  EXPECT_FALSE(stream.CanRead());
  EXPECT_EQ(0, stream.Read(&byte, 1, 0, kOxStreamSeekFromStart));
  EXPECT_EQ(0, stream.Seek(5, kOxStreamSeekFromStart));
  EXPECT_EQ(0u, stream.ReadFromFileSub(0, 1, &byte));
  StreamPtr open = OpenPattern(0, 10);
  EXPECT_EQ(0, open->Read(nullptr, 1, 0, kOxStreamSeekFromStart));
}

TEST_F(CacheFileStreamTest, ASecondInitReadsTheSecondFile) {
  StreamPtr stream = OpenPattern(0, 1000);
  EXPECT_EQ(10, ReadPattern(*stream, 0, 10, 0));
  EXPECT_EQ(kStatusOK, stream->Init(CreateOxString(folder.PatternFile(1, 500))));
  EXPECT_EQ(500, ReadPattern(*stream, 1, 1000, 0));
  EXPECT_EQ(1, disk.openFiles);
  EXPECT_EQ(kStatusNoInput, stream->Init(OxSharedPtr<OxStringMac>()));
  EXPECT_EQ(0, ReadPattern(*stream, 1, 10, 0));
  EXPECT_EQ(0, disk.openFiles);
}

TEST_F(CacheFileStreamTest, InterruptedAndShortReadsAreContinued) {
  StreamPtr stream = OpenPattern(0, 3 * kBlock - 1);
  disk.isFitful = true;
  EXPECT_EQ(static_cast<long long>(3 * kBlock - 1), ReadPattern(*stream, 0, 3 * kBlock, 0));
}

TEST_F(CacheFileStreamTest, AFailureOfAnyFileReadFailsThatReadOnly) {
  for (const bool isFitful : {false, true}) {
    disk.isFitful = isFitful;
    for (int n = 1; n <= 5; ++n) {
      StreamPtr stream = OpenPattern(0, 5 * kBlock);
      disk.preads = 0;
      disk.failedPread = n;
      EXPECT_EQ(0, ReadPattern(*stream, 0, 5 * kBlock, 0)) << "failure " << n;
      EXPECT_EQ(static_cast<long long>(5 * kBlock), ReadPattern(*stream, 0, 5 * kBlock, 0)) << "failure " << n;
      EXPECT_TRUE(isFitful || disk.preads == 6) << "blocks read before the failure stay";
      EXPECT_EQ(640u, FBCMemoryCacheManager::GetInstance()->BlockCount());
    }
  }
  EXPECT_EQ(0, disk.openFiles);
}

TEST_F(CacheFileStreamTest, AFileThatShrankGivesItsOwnBytesOrNone) {
  const std::string path = folder.PatternFile(0, 3 * kBlock);
  StreamPtr stream = OpenStream(path);
  std::filesystem::resize_file(path, kBlock + 1000);
  EXPECT_EQ(1000, ReadPattern(*stream, 0, 1000, kBlock));
  EXPECT_EQ(0, ReadPattern(*stream, 0, 1001, kBlock));
  EXPECT_EQ(0, ReadPattern(*stream, 0, 1, 2 * kBlock - 1));
  EXPECT_EQ(0, ReadPattern(*stream, 0, 1, 2 * kBlock));
  folder.PatternFile(0, 3 * kBlock);
  EXPECT_EQ(static_cast<long long>(3 * kBlock), ReadPattern(*stream, 0, 3 * kBlock, 0)) << "no block was kept short";
}

TEST_F(CacheFileStreamTest, AFileThatGrewKeepsItsLength) {
  const std::string path = folder.PatternFile(0, 1000);
  StreamPtr stream = OpenStream(path);
  folder.PatternFile(0, 2 * kBlock);
  EXPECT_EQ(1000, ReadPattern(*stream, 0, 2 * kBlock, 0));
  unsigned char bytes[2] = {};
  EXPECT_EQ(2u, stream->ReadFromCache(bytes, 999, 2));
  EXPECT_EQ(0, bytes[1]) << "beyond the length";
}

TEST_F(CacheFileStreamTest, ABlockIsZeroBeyondTheEndOfTheFile) {
  StreamPtr stream = OpenPattern(0, kBlock);
  EXPECT_EQ(65536, ReadPattern(*stream, 0, kBlock, 0));
  EXPECT_EQ(kStatusOK, stream->Init(CreateOxString(folder.PatternFile(1, 100))));  // the same block, used again
  FBCMemoryCacheManager::GetInstance()->UpdateMemoryCache(stream.get());
  unsigned char bytes[1000];
  EXPECT_EQ(1000u, stream->ReadFromFile(bytes, 99, 1000));
  EXPECT_EQ(PatternAt(99, 1), bytes[0]);
  for (int i = 1; i < 1000; ++i) ASSERT_EQ(0, bytes[i]) << i;
}

TEST_F(CacheFileStreamTest, AFileOfUnknownSizeIsNotOpened) {
  disk.isUnknown = true;
  EXPECT_FALSE(OpenPattern(0, 10));
  EXPECT_EQ(0, disk.openFiles);
}

TEST_F(CacheFileStreamTest, AFileNameMayHoldAnyBytesButZero) {
  const std::string path = folder.Path("\xFF\xFE caf\xE9\n");
  std::filesystem::rename(folder.PatternFile(0, 10), path);
  StreamPtr stream = OpenStream(path);
  ASSERT_TRUE(stream);
  EXPECT_EQ(10, ReadPattern(*stream, 0, 10, 0));
}

TEST_F(CacheFileStreamTest, DescriptorZeroIsAnOpenFile) {
  const std::string path = folder.PatternFile(0, 10);
  const int standardInput = ::dup(0);
  ::close(0);
  StreamPtr stream = OpenStream(path);
  EXPECT_TRUE(stream && stream->CanRead());
  EXPECT_EQ(10, ReadPattern(*stream, 0, 10, 0));
  stream.Reset();
  EXPECT_EQ(-1, ::fcntl(0, F_GETFD)) << "closed again";
  if (standardInput >= 0) {
    ::dup2(standardInput, 0);
    ::close(standardInput);
  }
}

}  // namespace
