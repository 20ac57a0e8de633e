#ifndef CLIPPARSER_CACHE_READONLYFILE_H
#define CLIPPARSER_CACHE_READONLYFILE_H

#include <string>

struct stat;

// One regular file, open for reading. The only place of the library that calls the operating system for files. Not for
// hosts: it is not exported, and stands among the public headers only because CacheFileStream holds one.
//
// Owns its descriptor and closes it. Reads move no file position, so several threads may read one open file; Open and
// Close need the file for themselves.
class ReadOnlyFile {
 public:
  // What is asked of the operating system, as POSIX has it: -1 and errno for a failure. Replaceable, so that tests can
  // let a disk fail.
  struct SystemCalls {
    int (*open)(const char* path, int flags);
    int (*fstat)(int descriptor, struct stat* information);
    long long (*pread)(int descriptor, void* buffer, unsigned long long count, long long offset);
    int (*close)(int descriptor);
  };

  ReadOnlyFile() = default;
  ~ReadOnlyFile();
  ReadOnlyFile(const ReadOnlyFile&) = delete;
  ReadOnlyFile& operator=(const ReadOnlyFile&) = delete;

  // Opens the file at `path`, any bytes but zero, after closing the one that was open. False, with nothing open, when
  // there is no such file, it may not be read, or it is not a regular file: a pipe or a device could block the reader
  // for ever, a directory has no bytes.
  [[nodiscard]] bool Open(const std::string& path);
  void Close();

  [[nodiscard]] bool IsOpen() const { return m_descriptor != kNoDescriptor; }
  // Bytes in the file when it was opened.
  [[nodiscard]] unsigned long long Size() const { return m_size; }

  // Reads up to `length` bytes at `offset` and returns how many; fewer than `length` only where the file ends, or ended
  // when it was opened. 0 when any part could not be read.
  [[nodiscard]] unsigned long long Read(unsigned long long offset, unsigned long long length,
                                        unsigned char* buffer) const;

  // Replaces the system calls for the whole process and returns those used so far. The caller must see to it that no
  // other thread uses a file meanwhile.
  static SystemCalls UseSystemCalls(const SystemCalls& calls);

 private:
  [[nodiscard]] bool MeasureRegularFile();

  static constexpr int kNoDescriptor = -1;  // 0 is a descriptor like any other

  int m_descriptor = kNoDescriptor;
  unsigned long long m_size = 0;
};

#endif  // CLIPPARSER_CACHE_READONLYFILE_H
