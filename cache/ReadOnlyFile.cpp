#define _FILE_OFFSET_BITS 64  // 64-bit off_t on 32-bit systems too

#include "cache/ReadOnlyFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <limits>

static_assert(sizeof(off_t) == 8, "clips are larger than 4 GiB");

namespace {

int PosixOpen(const char* path, int flags) { return ::open(path, flags); }

int PosixFstat(int descriptor, struct stat* information) { return ::fstat(descriptor, information); }

long long PosixPread(int descriptor, void* buffer, unsigned long long count, long long offset) {
  return ::pread(descriptor, buffer, static_cast<size_t>(count), offset);
}

int PosixClose(int descriptor) { return ::close(descriptor); }

ReadOnlyFile::SystemCalls g_calls = {PosixOpen, PosixFstat, PosixPread, PosixClose};

// Repeats a call that a signal interrupted before it did anything.
template <class Call>
auto WithoutInterruption(Call call) {
  auto result = call();
  while (result == -1 && errno == EINTR) result = call();
  return result;
}

}  // namespace

ReadOnlyFile::~ReadOnlyFile() { Close(); }

bool ReadOnlyFile::Open(const std::string& path) {
  Close();
  if (path.find('\0') != std::string::npos) return false;  // the system would open another file: the part before it
  // O_NONBLOCK: opening a pipe that nobody writes to must not wait for a writer. It means nothing for regular files.
  constexpr int kFlags = O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
  m_descriptor = WithoutInterruption([&path] { return g_calls.open(path.c_str(), kFlags); });
  if (!IsOpen()) return false;
  if (MeasureRegularFile()) return true;
  Close();
  return false;
}

void ReadOnlyFile::Close() {
  if (IsOpen()) g_calls.close(m_descriptor);  // nothing was written: there is no failure to act on
  m_descriptor = kNoDescriptor;
  m_size = 0;
}

bool ReadOnlyFile::MeasureRegularFile() {
  struct stat information = {};
  if (g_calls.fstat(m_descriptor, &information) != 0) return false;
  if (!S_ISREG(information.st_mode) || information.st_size < 0) return false;
  m_size = static_cast<unsigned long long>(information.st_size);
  return true;
}

unsigned long long ReadOnlyFile::Read(unsigned long long offset, unsigned long long length,
                                      unsigned char* buffer) const {
  constexpr auto kLastOffset = static_cast<unsigned long long>(std::numeric_limits<long long>::max());
  if (!IsOpen() || offset > kLastOffset || length > kLastOffset - offset) return 0;
  unsigned long long done = 0;
  while (done < length) {
    const long long count = WithoutInterruption([&] {
      return g_calls.pread(m_descriptor, buffer + done, length - done, static_cast<long long>(offset + done));
    });
    if (count < 0) return 0;
    if (count == 0) break;  // the end of a file that shrank
    done += static_cast<unsigned long long>(count);
    if (offset + done >= m_size) break;  // the end: no second call to be told so
  }
  return done;
}

ReadOnlyFile::SystemCalls ReadOnlyFile::UseSystemCalls(const SystemCalls& calls) {
  const SystemCalls former = g_calls;
  g_calls = calls;
  return former;
}
