#include "clipinfo/RowWriter.h"

#include <iomanip>
#include <nlohmann/json.hpp>
#include <utility>

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

const char* KindText(const Element& element) {
  if (!element.isRead) return kUnreadable;
  switch (element.type) {
    case kKeySystemMetadataPack:
      return "system";
    case kKeyPictureEssence:
      return "picture";
    case kKeySoundEssence:
      return "sound";
    default:
      return KeyKind(element.type) == kKeyEssence ? "data" : "other";
  }
}

std::string FlagLetters(unsigned char flags) {
  std::string letters;
  for (const Flag& flag : kFlags) letters += (flags & flag.bit) != 0 ? flag.letter : '-';
  return letters;
}

std::string HexFlags(unsigned char flags) { return "0x" + HexText(&flags, 1); }

std::string OffsetText(const Element& element) { return element.isFound ? std::to_string(element.offset) : ""; }

std::string SizeText(const Element& element) { return element.isRead ? std::to_string(element.size) : ""; }

class TextWriter : public RowWriter {
 public:
  using RowWriter::RowWriter;

  void Begin(unsigned int elementCount) override {
    m_out << "flags: R random access, S sequence header, F forward prediction, B backward prediction\n"
          << "      unit  flags      key  temporal";
    for (unsigned int i = 0; i < elementCount; ++i) {
      m_out << "  " << std::left << std::setw(10) << "element " + std::to_string(i) << std::right << std::setw(13)
            << "offset" << std::setw(10) << "size";
    }
    m_out << '\n';
  }

  void Row(const FrameRow& row) override {
    m_out << std::setw(10) << row.editUnit << "  " << HexFlags(row.flags) << ' ' << FlagLetters(row.flags)
          << std::setw(5) << +row.keyFrameOffset << std::setw(10) << +row.temporalOffset;
    for (const Element& element : row.elements) {
      m_out << "  " << std::left << std::setw(10) << KindText(element) << std::right << std::setw(13)
            << OffsetText(element) << std::setw(10) << SizeText(element);
    }
    m_out << '\n';
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
      m_out << ",kind_" << i << ",offset_" << i << ",size_" << i;
    }
    m_out << '\n';
  }

  void Row(const FrameRow& row) override {
    m_out << row.editUnit << ',' << HexFlags(row.flags);
    for (const Flag& flag : kFlags) m_out << ',' << ((row.flags & flag.bit) != 0 ? 1 : 0);
    m_out << ',' << +row.keyFrameOffset << ',' << +row.temporalOffset;
    for (const Element& element : row.elements) {
      m_out << ',' << KindText(element) << ',' << OffsetText(element) << ',' << SizeText(element);
    }
    m_out << '\n';
  }
};

class JSONWriter : public RowWriter {
 public:
  using RowWriter::RowWriter;

  void Begin(unsigned int) override { m_out << '['; }

  void Row(const FrameRow& row) override {
    nlohmann::ordered_json json = {{"edit_unit", row.editUnit}, {"flags", row.flags}};
    for (const Flag& flag : kFlags) json[flag.name] = (row.flags & flag.bit) != 0;
    json["key_frame_offset"] = row.keyFrameOffset;
    json["temporal_offset"] = row.temporalOffset;
    nlohmann::ordered_json& elements = json["elements"] = nlohmann::ordered_json::array();
    for (const Element& element : row.elements) {
      nlohmann::ordered_json item = {{"kind", KindText(element)}, {"offset", nullptr}, {"size", nullptr}};
      if (element.isFound) item["offset"] = element.offset;
      if (element.isRead) item["size"] = element.size;
      elements.push_back(std::move(item));
    }
    m_out << (m_isFirst ? "\n" : ",\n") << json.dump();
    m_isFirst = false;
  }

  void End() override { m_out << "\n]\n"; }

 private:
  bool m_isFirst = true;
};

}  // namespace

std::unique_ptr<RowWriter> MakeRowWriter(RowFormat format, std::ostream& out) {
  if (format == RowFormat::CSV) return std::make_unique<CSVWriter>(out);
  if (format == RowFormat::JSON) return std::make_unique<JSONWriter>(out);
  return std::make_unique<TextWriter>(out);
}
