#ifndef CLIPPARSER_CLIPINFO_OUTPUTFILE_H
#define CLIPPARSER_CLIPINFO_OUTPUTFILE_H

#include <string>

// Where extracted bytes go. A file is written beside its place, as NAME.part, and takes its name only when it is whole;
// dropped before Finish, it is removed. "-" is the standard output; that, a device or a pipe is written directly.
class OutputFile {
 public:
  // Throws CommandError, as the functions do. `source` is a file that must not be overwritten.
  OutputFile(const std::string& path, const std::string& source);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  void Write(const unsigned char* bytes, std::size_t count);
  // For a library that writes by itself: the open file, or -1 when it cannot be written but in order.
  [[nodiscard]] int SeekableDescriptor() const { return m_partPath.empty() ? -1 : m_descriptor; }
  // Throws when the program was told to end. Write does so by itself.
  void CheckInterrupt() const;
  [[nodiscard]] const std::string& Name() const { return m_name; }  // for messages
  // Everything is on the disk, under its name.
  void Finish();

 private:
  void OpenBeside(const std::string& path);
  void OpenDirectly(const std::string& path);
  [[noreturn]] void Fail() const;

  std::string m_name;  // for messages
  std::string m_path;
  std::string m_partPath;  // empty: written directly
  int m_descriptor = -1;
};

#endif  // CLIPPARSER_CLIPINFO_OUTPUTFILE_H
