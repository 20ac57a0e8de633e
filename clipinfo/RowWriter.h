#ifndef CLIPPARSER_CLIPINFO_ROWWRITER_H
#define CLIPPARSER_CLIPINFO_ROWWRITER_H

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "clipinfo/Clip.h"
#include "clipinfo/LineBuffer.h"

// What the frames command tells of one edit unit.
struct FrameRow {
  unsigned int editUnit = 0;
  unsigned char flags = 0;
  signed char keyFrameOffset = 0;
  signed char temporalOffset = 0;
  std::vector<Element> elements;
};

// Prints rows as they come; keeps none but those of the last few milliseconds.
class RowWriter {
 public:
  explicit RowWriter(std::ostream& out) : m_out(out) {}
  virtual ~RowWriter() = default;
  RowWriter(const RowWriter&) = delete;
  RowWriter& operator=(const RowWriter&) = delete;

  virtual void Begin(unsigned int elementCount) = 0;
  virtual void Row(const FrameRow& row) = 0;
  // Only after the last row: a list that broke off is not closed, so that no program takes it for whole. `incomplete`
  // counts the rows with an element that could not be read.
  virtual void End(unsigned long long incomplete) { static_cast<void>(incomplete); }

 protected:
  LineBuffer m_out;
};

enum class RowFormat { Text, CSV, JSON };
[[nodiscard]] std::unique_ptr<RowWriter> MakeRowWriter(RowFormat format, std::ostream& out, const std::string& path);

#endif  // CLIPPARSER_CLIPINFO_ROWWRITER_H
