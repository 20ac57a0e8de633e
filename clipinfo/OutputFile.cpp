#include "clipinfo/OutputFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <utility>

#include "clipinfo/Clip.h"
#include "clipinfo/Text.h"

namespace fs = std::filesystem;

namespace {

constexpr mode_t kReadWriteForAll = 0666;  // less what the umask takes

// Set by a signal that ends the program, so that the unfinished file can be removed first.
volatile std::sig_atomic_t g_isInterrupted = 0;

extern "C" void NoteInterrupt(int) { g_isInterrupted = 1; }

// A link stays: the file that it leads to is replaced.
std::string Resolved(const std::string& path) {
  std::error_code error;
  const fs::path target = fs::canonical(path, error);
  return error ? path : target.string();
}

}  // namespace

OutputFile::OutputFile(const std::string& path, const std::string& source) : m_name(Escaped(path)) {
  if (path == "-") {
    m_name = "standard output";
    m_descriptor = STDOUT_FILENO;
    if (::isatty(m_descriptor) != 0) throw CommandError("standard output: is a terminal");
    return;
  }
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (fs::is_directory(status)) throw CommandError(m_name + ": is a directory");
  if (fs::equivalent(path, source, error)) throw CommandError(m_name + ": is the clip itself");
  if (fs::exists(status) && !fs::is_regular_file(status)) {
    OpenDirectly(path);
  } else {
    OpenBeside(Resolved(path));
  }
}

void OutputFile::OpenDirectly(const std::string& path) {
  m_descriptor = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
  if (m_descriptor < 0) Fail();
}

void OutputFile::OpenBeside(const std::string& path) {
  m_path = path;
  const std::string partPath = path + ".part";
  m_descriptor = ::open(partPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, kReadWriteForAll);
  if (m_descriptor < 0) Fail();
  m_partPath = partPath;
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) static_cast<void>(std::signal(signal, NoteInterrupt));
}

OutputFile::~OutputFile() {
  if (m_descriptor > STDERR_FILENO) ::close(m_descriptor);
  if (!m_partPath.empty()) ::unlink(m_partPath.c_str());
}

void OutputFile::Write(const unsigned char* bytes, std::size_t count) {
  while (count > 0) {
    CheckInterrupt();
    const ssize_t written = ::write(m_descriptor, bytes, count);
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) Fail();
    bytes += written;
    count -= static_cast<std::size_t>(written);
  }
}

void OutputFile::CheckInterrupt() const {
  if (g_isInterrupted != 0) throw CommandError(m_name + ": interrupted");
}

void OutputFile::Finish() {
  if (m_partPath.empty()) return;
  if (::fsync(m_descriptor) != 0) Fail();
  if (::close(std::exchange(m_descriptor, -1)) != 0) Fail();
  if (std::rename(m_partPath.c_str(), m_path.c_str()) != 0) Fail();
  m_partPath.clear();
}

void OutputFile::Fail() const { throw CommandError(m_name + ": " + std::strerror(errno)); }
