#include <algorithm>

#include "clipinfo/Html.h"
#include "clipinfo/Report.h"

namespace {

constexpr double kWidth = 1000;
constexpr double kBarTop = 6;
constexpr double kBarHeight = 44;
constexpr double kNarrowest = 1.5;       // so that a pack of a few bytes can be seen
constexpr std::size_t kMostDrawn = 400;  // of partitions in the drawing and the table

const char* KindText(const PartitionPack& pack) {
  if (pack.PacketType() == kKeyHeaderPartitionPack) return "header";
  return pack.PacketType() == kKeyBodyPartitionPack ? "body" : "footer";
}

class Bar {
 public:
  Bar(std::ostream& out, unsigned long long fileSize) : m_out(out), m_scale(kWidth / static_cast<double>(fileSize)) {}

  void Draw(const VerifiedPartition& partition) {
    const unsigned long long header = partition.pack->HeaderByteCount();
    const unsigned long long middle = std::min(partition.content, partition.base + std::min(header, partition.content));
    m_out << "<g class=\"partition\"><title>" << KindText(*partition.pack) << " partition at "
          << OffsetText(partition.offset) << ", " << SizeText(partition.end - partition.offset) << "</title>";
    // Wide parts first, so that those drawn wider than they are lie on top.
    Part("essence", partition.content, partition.end);
    if (!partition.segments.empty()) Part("index", middle, partition.content);
    Part("metadata", partition.offset, partition.segments.empty() ? partition.content : middle);
    m_out << "</g>\n";
  }

 private:
  void Part(const char* name, unsigned long long begin, unsigned long long end) {
    if (end <= begin) return;
    const double width = std::max(kNarrowest, static_cast<double>(end - begin) * m_scale);
    const double left = std::min(static_cast<double>(begin) * m_scale, kWidth - width);
    m_out << "<rect class=\"" << name << "\" x=\"" << DecimalText(left) << "\" y=\"" << kBarTop << "\" width=\""
          << DecimalText(width) << "\" height=\"" << kBarHeight << "\"/>";
  }

  std::ostream& m_out;
  double m_scale;
};

void WriteTable(std::ostream& out, const Report& report) {
  HtmlTable table(out, "Partitions",
                  {"Kind", "#Offset", "#Bytes", "#Body SID", "#Index SID", "#Header bytes", "#Index bytes"});
  const std::vector<VerifiedPartition>& partitions = report.verification.partitions;
  for (std::size_t i = 0; i < std::min(partitions.size(), kMostDrawn); ++i) {
    const VerifiedPartition& each = partitions[i];
    table.Row({KindText(*each.pack), OffsetText(each.offset), GroupedText(each.end - each.offset),
               std::to_string(each.pack->BodySID()), std::to_string(each.pack->IndexSID()),
               GroupedText(each.pack->HeaderByteCount()), GroupedText(each.pack->IndexByteCount())});
  }
}

}  // namespace

void WritePartitions(std::ostream& out, const Report& report) {
  const std::vector<VerifiedPartition>& partitions = report.verification.partitions;
  const std::size_t drawn = std::min(partitions.size(), kMostDrawn);
  out << "<section id=\"partitions\" aria-labelledby=\"h-partitions\"><h2 id=\"h-partitions\">Partitions</h2>\n"
      << "<figure><ul class=\"legend\"><li class=\"key-metadata\">header metadata</li><li "
         "class=\"key-index\">index</li>"
      << "<li class=\"key-essence\">essence</li></ul>\n"
      << "<svg class=\"bar\" viewBox=\"0 0 1000 56\" preserveAspectRatio=\"none\" role=\"img\" "
      << "aria-labelledby=\"bar-title bar-text\"><title id=\"bar-title\">The file’s partitions, to scale</title>"
      << "<desc id=\"bar-text\">" << partitions.size() << " partitions over " << SizeText(report.verification.fileSize)
      << "; the table has the numbers.</desc>\n";
  Bar bar(out, std::max(1ULL, report.verification.fileSize));
  for (std::size_t i = 0; i < drawn; ++i) bar.Draw(partitions[i]);
  out << "</svg>\n<figcaption>The whole file from its first to its last byte, to scale; what is too narrow to be seen "
         "is "
      << "drawn a little wider.</figcaption></figure>\n";
  if (drawn < partitions.size()) {
    out << "<p>The first " << drawn << " of " << GroupedText(partitions.size()) << " partitions.</p>\n";
  }
  WriteTable(out, report);
  out << "</section>\n";
}
