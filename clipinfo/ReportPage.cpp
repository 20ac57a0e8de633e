#include <algorithm>
#include <filesystem>
#include <iterator>

#include "clipinfo/Html.h"
#include "clipinfo/Report.h"

namespace {

constexpr const char* kNone = "–";

// A member of a member and so on; null when one of them is not there.
Json At(const Json& document, std::initializer_list<const char*> names) {
  Json value = document;
  for (const char* const name : names) {
    if (!value.is_object() || !value.contains(name)) return nullptr;
    value = Json(value[name]);
  }
  return value;
}

std::string TextHtml(const Json& value) {
  if (value.is_null()) return kNone;
  return HtmlText(value.is_string() ? value.get<std::string>() : JsonText(value));
}

const char* Verdict(const Verification& verification) {
  if (verification.findings.isDamaged()) return "damaged";
  return verification.findings.NoteCount() != 0 ? "noted" : "whole";
}

std::string VerdictHtml(const VerifyFindings& findings) {
  const auto counted = [](unsigned long long count, const char* name) {
    return GroupedText(count) + ' ' + name + (count == 1 ? "" : "s");
  };
  const std::string notes = findings.NoteCount() == 0 ? "" : counted(findings.NoteCount(), "note");
  if (!findings.isDamaged()) return "<strong>Whole</strong>" + (notes.empty() ? "" : " · " + notes);
  return "<strong>Damaged</strong> · " + counted(findings.DamageCount(), "finding") +
         (notes.empty() ? "" : " · " + notes);
}

void WriteCard(std::ostream& out, const std::string& name, const std::string& value, const std::string& detail) {
  out << "<div class=\"card\"><dt>" << name << "</dt><dd><span class=\"value\">" << value
      << "</span><span class=\"detail\">" << detail << "</span></dd></div>\n";
}

// Of one field where the fields are apart; people know the frame's.
std::string PictureSizeHtml(const Json& descriptor) {
  Json size = At(descriptor, {"display"});
  if (size.is_null()) size = At(descriptor, {"stored"});
  const Json width = At(size, {"width"});
  Json height = At(size, {"height"});
  if (!width.is_number() || !height.is_number()) return kNone;
  const bool isOfField = At(descriptor, {"frame_layout", "value"}) == 1;
  return width.dump() + " × " + std::to_string(height.get<unsigned long long>() * (isOfField ? 2 : 1));
}

double RateOf(const Json& rate) {
  const Json numerator = At(rate, {"numerator"});
  const Json denominator = At(rate, {"denominator"});
  const bool isRate = numerator.is_number() && denominator.is_number() && denominator != 0;
  return isRate ? numerator.get<double>() / denominator.get<double>() : 0;
}

void WritePictureCard(std::ostream& out, const Report& report) {
  const std::vector<ReportTrack> tracks = TracksOf(report.info, "picture");
  const Json descriptor = tracks.empty() || tracks.front().descriptor == nullptr ? Json() : *tracks.front().descriptor;
  WriteCard(out, "Picture", PictureSizeHtml(descriptor), LabelHtml(At(descriptor, {"coding"})));
}

void WriteRateCard(std::ostream& out, const Report& report) {
  const double rate = RateOf(At(report.info, {"edit_rate"}));
  const auto count = static_cast<double>(std::max(1ULL, report.pictures.Count()));
  const double bits = static_cast<double>(report.pictures.Bytes()) / count * rate * 8;
  WriteCard(out, "Edit rate", rate > 0 ? DecimalText(rate) + " fps" : kNone,
            bits > 0 ? DecimalText(std::max(0.01, bits / 1e6)) + " Mbit/s of pictures" : kNone);
}

void WriteSoundCard(std::ostream& out, const Report& report) {
  const std::vector<ReportTrack> tracks = TracksOf(report.info, "sound");
  const Json descriptor = tracks.empty() || tracks.front().descriptor == nullptr ? Json() : *tracks.front().descriptor;
  const double rate = RateOf(At(descriptor, {"sampling_rate"}));
  const std::string count = std::to_string(tracks.size()) + (tracks.size() == 1 ? " track" : " tracks");
  WriteCard(out, "Sound", tracks.empty() ? "none" : count,
            rate > 0 ? DecimalText(rate / 1000) + " kHz, " + TextHtml(At(descriptor, {"bits"})) + " bits" : kNone);
}

void WriteFact(std::ostream& out, const std::string& name, const std::string& html) {
  out << "<div><dt>" << name << "</dt><dd>" << html << "</dd></div>\n";
}

void WriteNavigation(std::ostream& out) {
  constexpr const char* kSections[][2] = {{"pictures", "Picture sizes"}, {"groups", "Groups"},     {"sound", "Sound"},
                                          {"partitions", "Partitions"},  {"findings", "Findings"}, {"facts", "Facts"}};
  out << "<nav aria-label=\"Sections\"><ul>";
  for (const auto& section : kSections) out << "<li><a href=\"#" << section[0] << "\">" << section[1] << "</a></li>";
  out << "</ul></nav>\n";
}

}  // namespace

std::vector<ReportTrack> TracksOf(const Json& info, const std::string& kind) {
  std::vector<ReportTrack> tracks;
  for (const Json& package : info["packages"]) {
    if (!tracks.empty()) break;  // the first package with such tracks tells as much as those behind it
    for (const Json& track : package["tracks"]) {
      if (track.value("kind", Json()) != kind) continue;
      const Json* descriptor = nullptr;
      for (const Json& component : track["components"]) {
        if (descriptor == nullptr && component.contains("descriptor")) descriptor = &component["descriptor"];
      }
      if (track.contains("descriptor")) descriptor = &track["descriptor"];
      tracks.push_back({&track, descriptor != nullptr && descriptor->is_object() ? descriptor : nullptr});
    }
  }
  return tracks;
}

std::string LabelHtml(const Json& label) {
  if (!label.is_object()) return kNone;
  const std::string hex = TextHtml(At(label, {"hex"}));
  const Json name = At(label, {"name"});
  if (!name.is_string()) return "<code>" + hex + "</code>";
  std::string text = TextHtml(name);
  std::replace(text.begin(), text.end(), '_', ' ');
  return "<abbr title=\"" + hex + "\">" + text + "</abbr>";
}

std::string RationalHtml(const Json& value) {
  if (!value.is_object()) return kNone;
  const std::string numerator = TextHtml(At(value, {"numerator"}));
  const Json denominator = At(value, {"denominator"});
  return denominator == 1 ? numerator : numerator + "/" + TextHtml(denominator);
}

Timebase TimebaseOf(const Report& report) {
  const Json timecode = At(report.info, {"duration_timecode"});
  const Json base = At(timecode, {"base"});
  if (!base.is_number()) return {};
  return {base.get<long long>(), At(timecode, {"drop_frame"}) == true};
}

void WriteSummary(std::ostream& out, const Report& report) {
  out << "<header><p class=\"eyebrow\">Clip report</p>\n<h1>"
      << HtmlText(std::filesystem::path(report.path).filename().string()) << "</h1>\n<p class=\"verdict "
      << Verdict(report.verification) << "\">" << VerdictHtml(report.verification.findings)
      << "</p>\n<dl class=\"cards\">\n";
  const Json duration = At(report.info, {"duration"});
  WriteCard(out, "Duration", TextHtml(At(report.info, {"duration_timecode", "text"})),
            TextHtml(duration) + " edit units");
  WritePictureCard(out, report);
  WriteRateCard(out, report);
  WriteSoundCard(out, report);
  const unsigned long long size = report.verification.fileSize;
  WriteCard(out, "File", SizeText(size), GroupedText(size) + " bytes");
  out << "</dl>\n</header>\n";
}

void WriteFindings(std::ostream& out, const Report& report) {
  const VerifyFindings& findings = report.verification.findings;
  out << "<section id=\"findings\" aria-labelledby=\"h-findings\"><h2 id=\"h-findings\">Findings</h2>\n";
  const std::vector<Finding> list = findings.InFileOrder();
  if (list.empty()) out << "<p class=\"none\">Every structure of the clip agrees with the others.</p>\n";
  if (!list.empty()) {
    HtmlTable table(out, "What verify found", {"Kind", "#Offset", "#Edit unit", "Finding"});
    for (const Finding& finding : list) {
      const FindingWording& wording = WordingOf(finding.kind);
      table.Row({wording.isNote ? "<span class=\"tag note\">note</span>" : "<span class=\"tag damage\">damage</span>",
                 OffsetText(finding.offset), finding.editUnit ? GroupedText(*finding.editUnit) : "",
                 std::string(wording.text) + " <code>" + wording.name + "</code><span class=\"detail\">" +
                     HtmlText(finding.detail) + "</span>"});
    }
  }
  const unsigned long long more = findings.DamageCount() + findings.NoteCount() - list.size();
  if (more != 0) out << "<p>And " << GroupedText(more) << " more of these kinds.</p>\n";
  out << "</section>\n";
}

void WriteFacts(std::ostream& out, const Report& report) {
  out << "<section id=\"facts\" aria-labelledby=\"h-facts\"><h2 id=\"h-facts\">Facts</h2>\n<dl class=\"facts\">\n";
  WriteFact(out, "Path", "<span class=\"path\">" + HtmlText(report.path) + "</span>");
  for (const Json& each : report.info["identifications"]) {
    WriteFact(out, "Written by",
              TextHtml(At(each, {"company"})) + ", " + TextHtml(At(each, {"product"})) + " " +
                  TextHtml(At(each, {"version"})) + ", " + TextHtml(At(each, {"date"})));
  }
  WriteFact(out, "Last modified", TextHtml(At(report.info, {"last_modified"})));
  WriteFact(out, "Operational pattern", LabelHtml(At(report.info, {"operational_pattern"})));
  for (const Json& each : report.info["essence_containers"]) WriteFact(out, "Essence container", LabelHtml(each));
  WriteFact(out, "Partition version",
            TextHtml(At(report.info, {"partition_version", "major"})) + "." +
                TextHtml(At(report.info, {"partition_version", "minor"})));
  for (const Json& each : report.info["packages"]) {
    WriteFact(out, At(each, {"kind"}) == "material" ? "Material package" : "Source package",
              "<code>" + TextHtml(At(each, {"umid"})) + "</code>");
  }
  out << "</dl></section>\n";
}

void WriteReport(std::ostream& out, const Report& report) {
  out << "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">\n"
      << "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
      << "<meta name=\"color-scheme\" content=\"light dark\">\n"
      << "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src 'unsafe-inline'; "
         "img-src data:\">\n"
      << "<link rel=\"icon\" href=\"data:,\">\n"
      << "<title>" << HtmlText(std::filesystem::path(report.path).filename().string()) << " · clip report</title>\n"
      << "<style>\n"
      << kReportStyle << "</style></head>\n<body>\n<a class=\"skip\" href=\"#main\">Skip to the plot</a>\n";
  WriteSummary(out, report);
  WriteNavigation(out);
  out << "<main id=\"main\">\n";
  for (const auto write : {WritePictures, WriteGroups, WriteSound, WritePartitions, WriteFindings, WriteFacts}) {
    write(out, report);
  }
  out << "</main>\n<footer>clipinfo " CLIPINFO_VERSION "</footer>\n</body></html>\n";
}
