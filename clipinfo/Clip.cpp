#include "clipinfo/Clip.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>

#include "clipinfo/Text.h"

#include "clipinfo/PlainFile.h"

namespace {

// Edit units are asked for as 32-bit numbers.
constexpr unsigned long long kMostEditUnits = 1ULL << 32;

void CheckFile(const std::string& path) {
  struct stat info {};
  if (::stat(path.c_str(), &info) != 0) {
    throw CommandError(errno == ENOENT ? "not found; is the path right, the card mounted?" : std::strerror(errno));
  }
  if (S_ISDIR(info.st_mode)) throw CommandError("is a directory, not a clip, and no *.mxf lies below it; name a clip");
  if (!S_ISREG(info.st_mode)) throw CommandError("not a regular file; copy the clip to one");
  if (::access(path.c_str(), R_OK) != 0) throw CommandError(std::strerror(errno));
  if (info.st_size == 0) throw CommandError("empty file; copy the clip again");
}

// Which step of opening failed. The step that reads the header metadata can be repeated and costs little by now.
std::string OpeningFault(MXFStream& stream) {
  const OxSharedPtr<PartitionPack> pack = stream.GetHeaderPartitionPack();
  if (!pack) return "not an MXF file: no header partition pack from the file's first byte on; copy the clip again";
  if (pack->HeaderByteCount() == 0) {
    return "no header metadata in the header partition" + PlaceText(pack->Offset()) +
           "; a recording that was cut off has none";
  }
  const std::string place = PlaceText(pack->HeaderOffset());
  const std::string advice = place + "; copy the clip again, or see what verify tells";
  if (stream.ParseHeaderPartition() != kStatusOK) {
    return "header metadata damaged, or not one KAG behind its partition," + advice;
  }
  if (stream.GetHeaderMetadata()->MaterialPackageCount() == 0) {
    return "no material package in the header metadata" + advice;
  }
  return "header metadata damaged: the first track of the material package cannot be read," + advice;
}

// A whole number that fills `text`.
bool ParseNumber(const std::string& text, unsigned long long& number) {
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && stop == end;
}

}  // namespace

Clip::Clip(const std::string& path) {
  CheckFile(path);
  m_stream = std::make_unique<MXFStream>(CreateOxString(path));
  if (!m_stream->GetStream()) throw CommandError("cannot be opened");
  m_reader.SetStream(m_stream->GetStream());
  m_heads.SetStream(OxSharedPtr<PlainFile>(new PlainFile(path)));
  if (m_stream->Parse() != kStatusOK) throw CommandError(OpeningFault(*m_stream));
}

Element Clip::ElementAt(unsigned long long offset) {
  Element element;
  element.isFound = true;
  element.offset = offset;
  KLVPacket packet;
  element.isRead = m_heads.SetOffset(static_cast<long long>(offset), kOxStreamSeekFromStart) &&
                   m_heads.ReadKeyAndLength(&packet) == PacketHead::Read;
  if (!element.isRead) return element;
  element.key = packet.key();
  element.type = packet.PacketType();
  element.size = packet.Length();
  element.next = packet.NextOffset();
  return element;
}

unsigned int Clip::ElementCount(unsigned int editUnit) {
  unsigned int count = 0;
  unsigned long long offset = 0;
  while (m_stream->GetEssenceOffset(editUnit, count, offset) == kStatusOK) ++count;
  return count;
}

bool Clip::isHeaderIndexMissing() const {
  const OxSharedPtr<PartitionPack> pack = m_stream->GetHeaderPartitionPack();
  return pack && pack->MajorVersion() == 1 && pack->MinorVersion() == 3 && pack->IndexByteCount() == 0;
}

const char* Clip::NoIndexText() const {
  return isHeaderIndexMissing() ? "no index in the header partition" : "in no index of the clip";
}

EditUnits Clip::ParseRange(const std::string& text) const {
  const long long duration = m_stream->Duration();
  if (duration <= 0) throw CommandError("the clip does not tell how many edit units it has");
  EditUnits units{0, std::min(static_cast<unsigned long long>(duration), kMostEditUnits)};
  if (text.empty()) return units;

  const unsigned long long end = units.end;
  const std::size_t colon = text.find(':');
  if (colon == std::string::npos) throw CommandError("--range wants A:B, such as 0:25");
  const std::string from = text.substr(0, colon);
  const std::string to = text.substr(colon + 1);
  const bool isParsed = (from.empty() || ParseNumber(from, units.begin)) && (to.empty() || ParseNumber(to, units.end));
  if (!isParsed) throw CommandError("--range wants A:B, numbers of edit units");
  if (units.begin >= units.end || units.end > end) {
    throw CommandError("the range must lie in 0:" + std::to_string(end) + " and hold at least one edit unit");
  }
  return units;
}
