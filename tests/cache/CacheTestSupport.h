#ifndef CLIPPARSER_TESTS_CACHE_CACHETESTSUPPORT_H
#define CLIPPARSER_TESTS_CACHE_CACHETESTSUPPORT_H

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "cache/CacheFileStream.h"
#include "cache/FBCMemoryCacheManager.h"

constexpr unsigned long long kBlock = 65536;

// The byte at `offset` of the test file `number`: neighbours, blocks and files all differ.
inline unsigned char PatternAt(unsigned long long offset, unsigned int number) {
  const unsigned long long mixed = (offset + 1) * 0x9E3779B97F4A7C15u + (number + 1) * 0xC2B2AE3D27D4EB4Fu;
  return static_cast<unsigned char>(mixed >> 56);
}

// A folder that goes away with its owner.
class ScratchFolder {
 public:
  ScratchFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "cache-test-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) std::abort();
    m_path = name;
  }
  ~ScratchFolder() { std::filesystem::remove_all(m_path); }

  std::string Path(const std::string& name) const { return m_path + "/" + name; }
  std::string PatternFile(unsigned int number, unsigned long long size) const {
    std::string bytes(size, '\0');
    for (unsigned long long i = 0; i < size; ++i) bytes[i] = static_cast<char>(PatternAt(i, number));
    const std::string path = Path("file" + std::to_string(number));
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(size));
    return path;
  }

 private:
  std::string m_path;
};

// The disk as the library sees it, for the life of this object: counts, and fails on request.
class TestDisk {
 public:
  TestDisk() {
    s_disk = this;
    m_former = ReadOnlyFile::UseSystemCalls({Open, Fstat, Pread, Close});
  }
  ~TestDisk() { ReadOnlyFile::UseSystemCalls(m_former); }

  std::atomic<int> preads{0};
  std::atomic<int> openFiles{0};
  int failedPread = 0;     // the number, from 1, of the pread that fails with EIO
  bool isFitful = false;   // each pread is interrupted once, and then reads 1,000 bytes at most
  bool isUnknown = false;  // fstat fails
  std::function<void()> beforePread;
  std::vector<std::pair<unsigned long long, long long>> wanted;  // count, offset of each pread; single-threaded tests

 private:
  static int Open(const char* path, int flags) {
    const int descriptor = s_disk->m_former.open(path, flags);
    if (descriptor >= 0) ++s_disk->openFiles;
    return descriptor;
  }
  static int Fstat(int descriptor, struct stat* information) {
    return s_disk->isUnknown ? -1 : s_disk->m_former.fstat(descriptor, information);
  }
  static long long Pread(int descriptor, void* buffer, unsigned long long count, long long offset) {
    TestDisk& disk = *s_disk;
    const int number = ++disk.preads;
    if (disk.beforePread) {
      disk.beforePread();
    } else {
      disk.wanted.emplace_back(count, offset);
    }
    if (number == disk.failedPread) return errno = EIO, -1;
    if (disk.isFitful && number % 2 == 1) return errno = EINTR, -1;
    return disk.m_former.pread(descriptor, buffer, disk.isFitful ? std::min(count, 1000ull) : count, offset);
  }
  static int Close(int descriptor) {
    --s_disk->openFiles;
    return s_disk->m_former.close(descriptor);
  }

  static inline TestDisk* s_disk = nullptr;
  ReadOnlyFile::SystemCalls m_former;
};

using StreamPtr = OxSharedPtr<CacheFileStream>;

inline StreamPtr OpenStream(const std::string& path) { return CacheFileStream::Create(CreateOxString(path)); }

// Reads and compares each byte with the pattern: the count, or -1 for a wrong byte.
inline long long ReadPattern(CacheFileStream& stream, unsigned int number, unsigned long long size, long long offset) {
  std::vector<unsigned char> bytes(size, 0xEE);
  const long long count = stream.Read(bytes.data(), size, offset, kOxStreamSeekFromStart);
  for (long long i = 0; i < count; ++i) {
    const auto at = static_cast<unsigned long long>(offset + i);
    if (bytes[static_cast<std::size_t>(i)] != PatternAt(at, number)) return -1;
  }
  return count;
}

// Each test begins and ends without a pool.
class CacheTest : public testing::Test {
 protected:
  CacheTest() { FBCMemoryCacheManager::DeactivateInstance(); }
  ~CacheTest() override {
    EXPECT_EQ(640u, FBCMemoryCacheManager::GetInstance()->BlockCount()) << "a block was lost";
    FBCMemoryCacheManager::DeactivateInstance();
  }

  StreamPtr OpenPattern(unsigned int number, unsigned long long size) {
    return OpenStream(folder.PatternFile(number, size));
  }

  ScratchFolder folder;
};

#endif  // CLIPPARSER_TESTS_CACHE_CACHETESTSUPPORT_H
