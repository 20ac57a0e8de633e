#include <algorithm>
#include <iterator>

#include "clipinfo/Html.h"
#include "clipinfo/Report.h"

namespace {

constexpr const char* kKindNames[] = {"I, intra-coded", "P, predicted", "B, predicted both ways"};

std::string Percent(unsigned long long part, unsigned long long whole) {
  return DecimalText(whole == 0 ? 0 : 100.0 * static_cast<double>(part) / static_cast<double>(whole)) + " %";
}

template <class Counts>
auto MostCommon(const Counts& counts) {
  return std::max_element(counts.begin(), counts.end(),
                          [](const auto& a, const auto& b) { return a.second < b.second; });
}

void WritePattern(std::ostream& out, const PictureProfile& pictures) {
  const auto common = MostCommon(pictures.GroupPatterns());
  out << "<p>The most common order of pictures as they are stored, in " << GroupedText(common->second)
      << (common->second == 1 ? " group" : " groups") << " of " << common->first.size()
      << ":</p>\n<ol class=\"pattern\">";
  for (const char letter : common->first) out << "<li class=\"kind-" << letter << "\">" << letter << "</li>";
  out << "</ol>\n";
}

void WriteKinds(std::ostream& out, const PictureProfile& pictures) {
  HtmlTable table(out, "Kinds of pictures", {"Kind", "#Pictures", "#Bytes", "#Share of bytes", "#Average bytes"});
  for (const PictureKind kind : {kIntraPicture, kPredictedPicture, kBidirectionalPicture}) {
    const PictureProfile::KindTotal& total = pictures.Total(kind);
    if (total.count == 0) continue;
    table.Row({kKindNames[kind], GroupedText(total.count), GroupedText(total.bytes),
               Percent(total.bytes, pictures.Bytes()), GroupedText(total.bytes / total.count)});
  }
}

void WriteLengths(std::ostream& out, const PictureProfile& pictures) {
  HtmlTable table(out, "Lengths of groups", {"Group of", "#Groups"});
  for (const auto& [length, count] : pictures.GroupLengths())
    table.Row({GroupedText(length) + (length == 1 ? " picture" : " pictures"), GroupedText(count)});
}

void WriteSoundTable(std::ostream& out, const std::vector<ReportTrack>& tracks) {
  HtmlTable table(out, "Sound tracks", {"Track", "#Channels", "Sampling rate", "#Bits", "Container"});
  for (const ReportTrack& each : tracks) {
    const Json descriptor = each.descriptor != nullptr ? *each.descriptor : Json::object();
    const auto number = [&descriptor](const char* name) {
      return descriptor.contains(name) && !descriptor[name].is_null() ? HtmlText(JsonText(descriptor[name])) : "–";
    };
    table.Row({HtmlText(JsonText((*each.track)["id"])), number("channels"),
               RationalHtml(descriptor.value("sampling_rate", Json())) + " Hz", number("bits"),
               LabelHtml(descriptor.value("container", Json()))});
  }
}

}  // namespace

void WriteGroups(std::ostream& out, const Report& report) {
  const PictureProfile& pictures = report.pictures;
  out << "<section id=\"groups\" aria-labelledby=\"h-groups\"><h2 id=\"h-groups\">Groups of pictures</h2>\n";
  if (!pictures.hasKinds()) {
    out << "<p>The clip has no index that tells key frames from others.</p></section>\n";
    return;
  }
  if (pictures.Total(kIntraPicture).count == pictures.Count()) {
    out << "<p>Each picture is a key frame.</p>\n";
  } else {
    WritePattern(out, pictures);
  }
  out << "<div class=\"columns\">\n";
  WriteKinds(out, pictures);
  WriteLengths(out, pictures);
  out << "</div></section>\n";
}

void WriteSound(std::ostream& out, const Report& report) {
  const std::vector<ReportTrack> tracks = TracksOf(report.info, "sound");
  out << "<section id=\"sound\" aria-labelledby=\"h-sound\"><h2 id=\"h-sound\">Sound</h2>\n";
  if (tracks.empty()) {
    out << "<p>The clip has no sound track.</p></section>\n";
    return;
  }
  out << "<ul class=\"channels\">";
  unsigned long long channel = 0;
  constexpr unsigned long long kMostDrawn = 64;
  for (const ReportTrack& each : tracks) {
    out << "<li><span class=\"track\">Track " << HtmlText(JsonText((*each.track)["id"])) << "</span>";
    const Json count = each.descriptor != nullptr ? (*each.descriptor)["channels"] : Json();
    const unsigned long long channels = count.is_number() ? count.get<unsigned long long>() : 0;
    for (unsigned long long i = 0; i < channels && channel < kMostDrawn; ++i) {
      out << "<span class=\"channel\">" << ++channel << "</span>";
    }
    out << "</li>";
  }
  out << "</ul>\n";
  WriteSoundTable(out, tracks);
  out << "</section>\n";
}
