#include "clipinfo/PlainFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

PlainFile::PlainFile(const std::string& path)
    : m_descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK)) {
  struct stat info {};
  if (m_descriptor < 0 || ::fstat(m_descriptor, &info) != 0 || !S_ISREG(info.st_mode)) return;
  SetLength(static_cast<unsigned long long>(info.st_size));
}

PlainFile::~PlainFile() {
  if (m_descriptor >= 0) ::close(m_descriptor);
}

long long PlainFile::Read(unsigned char* buffer, unsigned long long size, long long offset,
                          OxStream_Seek_Origin origin) {
  const _OxRange range = CalcReadRange(size, offset, origin);
  unsigned long long done = 0;
  while (done < range.length) {
    const auto at = static_cast<off_t>(range.location + done);
    const ssize_t count = ::pread(m_descriptor, buffer + done, range.length - done, at);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return count < 0 ? 0 : static_cast<long long>(done);
    done += static_cast<unsigned long long>(count);
  }
  return static_cast<long long>(done);
}
