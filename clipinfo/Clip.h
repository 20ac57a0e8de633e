#ifndef CLIPPARSER_CLIPINFO_CLIP_H
#define CLIPPARSER_CLIPINFO_CLIP_H

#include <memory>
#include <stdexcept>
#include <string>

#include "stream/MXFStream.h"

// Ends a command; the text is for people and says what is wrong in one line, safe for a terminal.
class CommandError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The edit units [begin, end).
struct EditUnits {
  unsigned long long begin;
  unsigned long long end;
};

// One element of an edit unit, by its key and length in the file.
struct Element {
  bool isFound = false;           // otherwise nothing else counts: the index does not tell where it lies
  bool isRead = false;            // otherwise only the offset counts: no whole packet lies there
  unsigned long long offset = 0;  // of the key
  MxfUUID key;
  unsigned int type = 0;        // of the key, see KeyType
  unsigned long long size = 0;  // of the value
  unsigned long long next = 0;  // where the next packet begins
};

// A clip that a command works on: opened, or refused with the reason.
class Clip {
 public:
  // Throws CommandError.
  explicit Clip(const std::string& path);

  [[nodiscard]] MXFStream& Stream() { return *m_stream; }
  // A reader of the tool's own over the clip's file, for what the clip does not answer.
  [[nodiscard]] ParseMetaData& Reader() { return m_reader; }

  // The packet at a file offset.
  [[nodiscard]] Element ElementAt(unsigned long long offset);
  // How many elements the index gives the content package of an edit unit; 0: the edit unit has no index.
  [[nodiscard]] unsigned int ElementCount(unsigned int editUnit);
  // Whether the file keeps its index in the header partition, but has none there.
  [[nodiscard]] bool isHeaderIndexMissing() const;
  // Why an edit unit has no answers.
  [[nodiscard]] const char* NoIndexText() const;
  // What `text`, A:B with either left out, means for this clip. Throws CommandError when it lies outside the clip.
  [[nodiscard]] EditUnits ParseRange(const std::string& text) const;

 private:
  ParseMetaData m_reader;
  ParseMetaData m_heads;  // of elements; past the library's blocks
  std::unique_ptr<MXFStream> m_stream;
};

#endif  // CLIPPARSER_CLIPINFO_CLIP_H
