#ifndef CLIPPARSER_CLIPINFO_PLAINFILE_H
#define CLIPPARSER_CLIPINFO_PLAINFILE_H

#include <string>

#include "foundation/OxStream.h"

// A file read just as asked, past the library's blocks: for the few bytes at the head of each element, where a block of
// 64 KiB would bring in most of the essence.
class PlainFile : public OxStream {
 public:
  // A file that cannot be opened has no bytes.
  explicit PlainFile(const std::string& path);
  ~PlainFile() override;

  bool CanRead() override { return m_descriptor >= 0; }
  bool CanSeek() override { return m_descriptor >= 0; }
  // Short at the end of the file; 0 for any failure. The stream's own position stays.
  long long Read(unsigned char* buffer, unsigned long long size, long long offset,
                 OxStream_Seek_Origin origin) override;

 private:
  int m_descriptor;
};

#endif  // CLIPPARSER_CLIPINFO_PLAINFILE_H
