#include "clipinfo/RowWriter.h"

#include <utility>

#include "clipinfo/ElementKind.h"
#include "clipinfo/Json.h"
#include "clipinfo/Text.h"

namespace {

// The flags of an index entry (ST 377-1; the prediction bits as in ST 381).
struct Flag {
  unsigned char bit;
  char letter;
  const char* name;
};
constexpr Flag kFlags[] = {{0x80, 'R', "random_access"},
                           {0x40, 'S', "sequence_header"},
                           {0x20, 'F', "forward_prediction"},
                           {0x10, 'B', "backward_prediction"}};

constexpr std::size_t kKindWidth = 10;
constexpr std::size_t kOffsetWidth = 13;
constexpr std::size_t kSizeWidth = 10;

const char* KindText(const Element& element) { return element.isRead ? KindOf(element).name : kUnreadable; }

std::string_view HexFlags(unsigned char flags, char (&text)[4]) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  text[0] = '0';
  text[1] = 'x';
  text[2] = kDigits[flags >> 4];
  text[3] = kDigits[flags & 15];
  return {text, sizeof text};
}

class TextWriter : public RowWriter {
 public:
  using RowWriter::RowWriter;

  void Begin(unsigned int elementCount) override {
    m_out << "flags: R random access, S sequence header, F forward prediction, B backward prediction\n"
          << "      unit  flags      key  temporal";
    for (unsigned int i = 0; i < elementCount; ++i) {
      m_out << "  ";
      Left("element " + std::to_string(i), kKindWidth);
      Right("offset", kOffsetWidth);
      Right("size", kSizeWidth);
    }
    m_out.EndLine();
  }

  void Row(const FrameRow& row) override {
    char hex[4];
    Right(row.editUnit, 10);
    m_out << "  " << HexFlags(row.flags, hex) << ' ';
    for (const Flag& flag : kFlags) m_out << ((row.flags & flag.bit) != 0 ? flag.letter : '-');
    Right(static_cast<int>(row.keyFrameOffset), 5);
    Right(static_cast<int>(row.temporalOffset), 10);
    for (const Element& element : row.elements) {
      m_out << "  ";
      Left(KindText(element), kKindWidth);
      element.isFound ? Right(element.offset, kOffsetWidth) : Right("", kOffsetWidth);
      element.isRead ? Right(element.size, kSizeWidth) : Right("", kSizeWidth);
    }
    m_out.EndLine();
  }

 private:
  void Left(std::string_view text, std::size_t width) {
    const std::size_t begin = m_out.Mark();
    m_out << text;
    m_out.AlignLeft(begin, width);
  }
  void Right(std::string_view text, std::size_t width) {
    const std::size_t begin = m_out.Mark();
    m_out << text;
    m_out.AlignRight(begin, width);
  }
  template <class Integer, class = std::enable_if_t<std::is_integral_v<Integer>>>
  void Right(Integer number, std::size_t width) {
    const std::size_t begin = m_out.Mark();
    m_out.Number(number);
    m_out.AlignRight(begin, width);
  }
};

class CSVWriter : public RowWriter {
 public:
  using RowWriter::RowWriter;

  void Begin(unsigned int elementCount) override {
    m_out << "edit_unit,flags";
    for (const Flag& flag : kFlags) m_out << ',' << flag.name;
    m_out << ",key_frame_offset,temporal_offset";
    for (unsigned int i = 0; i < elementCount; ++i) {
      for (const char* column : {",kind_", ",offset_", ",size_"}) (m_out << column).Number(i);
    }
    m_out.EndLine();
  }

  void Row(const FrameRow& row) override {
    char hex[4];
    m_out.Number(row.editUnit) << ',' << HexFlags(row.flags, hex);
    for (const Flag& flag : kFlags) m_out << ',' << ((row.flags & flag.bit) != 0 ? '1' : '0');
    (m_out << ',').Number(static_cast<int>(row.keyFrameOffset));
    (m_out << ',').Number(static_cast<int>(row.temporalOffset));
    for (const Element& element : row.elements) {
      m_out << ',' << KindText(element) << ',';
      if (element.isFound) m_out.Number(element.offset);
      m_out << ',';
      if (element.isRead) m_out.Number(element.size);
    }
    m_out.EndLine();
  }
};

class JSONWriter : public RowWriter {
 public:
  JSONWriter(std::ostream& out, std::string path) : RowWriter(out), m_path(std::move(path)) {}

  void Begin(unsigned int) override {
    m_out << EnvelopeFrame("frames").head << "{\"path\": " << JsonText(m_path) << ", \"rows\": [";
  }

  void Row(const FrameRow& row) override {
    if (!m_isFirst) m_out << ',';
    m_isFirst = false;
    m_out.EndLine();
    (m_out << "{\"edit_unit\":").Number(row.editUnit);
    (m_out << ",\"flags\":").Number(row.flags);
    for (const Flag& flag : kFlags)
      m_out << ",\"" << flag.name << ((row.flags & flag.bit) != 0 ? "\":true" : "\":false");
    (m_out << ",\"key_frame_offset\":").Number(static_cast<int>(row.keyFrameOffset));
    (m_out << ",\"temporal_offset\":").Number(static_cast<int>(row.temporalOffset));
    m_out << ",\"elements\":";
    char separator = '[';
    for (const Element& element : row.elements) {
      m_out << std::exchange(separator, ',') << "{\"kind\":\"" << KindText(element) << "\",\"offset\":";
      Place(element.isFound, element.offset);
      m_out << ",\"size\":";
      Place(element.isRead, element.size);
      m_out << '}';
    }
    m_out << "]}";
  }

  void End(unsigned long long incomplete) override {
    (m_out << "\n], \"incomplete_rows\": ").Number(incomplete) << '}' << EnvelopeFrame("frames").tail;
  }

 private:
  void Place(bool isKnown, unsigned long long number) {
    if (!isKnown) {
      m_out << "null";
    } else if (number <= kMostExact) {
      m_out.Number(number);
    } else {
      (m_out << '"').Number(number) << '"';
    }
  }

  std::string m_path;
  bool m_isFirst = true;
};

}  // namespace

std::unique_ptr<RowWriter> MakeRowWriter(RowFormat format, std::ostream& out, const std::string& path) {
  if (format == RowFormat::CSV) return std::make_unique<CSVWriter>(out);
  if (format == RowFormat::JSON) return std::make_unique<JSONWriter>(out, path);
  return std::make_unique<TextWriter>(out);
}
