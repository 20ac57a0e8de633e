#ifndef CLIPPARSER_TESTS_SUPPORT_MEMORYFILE_H
#define CLIPPARSER_TESTS_SUPPORT_MEMORYFILE_H

#include <sys/mman.h>
#include <unistd.h>

#include <string>
#include <system_error>
#include <vector>

// A regular file that lies in memory and in no folder, to be changed, cut and restored in place.
class MemoryFile {
 public:
  explicit MemoryFile(const std::vector<unsigned char>& bytes = {}) : m_file(Checked(::memfd_create("file", 0))) {
    Write(0, bytes.data(), bytes.size());
  }
  ~MemoryFile() { ::close(m_file); }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  void Write(unsigned long long offset, const unsigned char* data, std::size_t size) const {
    if (size > 0) Checked(::pwrite(m_file, data, size, static_cast<off_t>(offset)));
  }
  // Cuts the file, or lets it grow by a hole.
  void Resize(unsigned long long size) const { Checked(::ftruncate(m_file, static_cast<off_t>(size))); }
  std::string Path() const { return "/proc/self/fd/" + std::to_string(m_file); }

 private:
  template <class Result>
  static Result Checked(Result result) {
    return result >= 0 ? result : throw std::system_error(errno, std::generic_category());
  }

  int m_file;
};

#endif  // CLIPPARSER_TESTS_SUPPORT_MEMORYFILE_H
