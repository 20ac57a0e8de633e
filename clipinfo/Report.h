#ifndef CLIPPARSER_CLIPINFO_REPORT_H
#define CLIPPARSER_CLIPINFO_REPORT_H

#include <ostream>
#include <string>

#include "clipinfo/Json.h"
#include "clipinfo/PictureProfile.h"
#include "clipinfo/Verification.h"

// What a report tells of a clip.
struct Report {
  explicit Report(const std::string& clip) : path(clip) {}
  Report(const Report&) = delete;
  Report& operator=(const Report&) = delete;

  std::string path;
  Json info;  // as the info command tells it, see docs/json.md
  Verification verification;
  PictureProfile pictures;
};

// The page: HTML with everything in it, nothing to fetch, no script. Whatever comes from the clip is escaped.
void WriteReport(std::ostream& out, const Report& report);

// Its sections, in their order.
void WriteSummary(std::ostream& out, const Report& report);
void WritePictures(std::ostream& out, const Report& report);
void WriteGroups(std::ostream& out, const Report& report);
void WriteSound(std::ostream& out, const Report& report);
void WritePartitions(std::ostream& out, const Report& report);
void WriteFindings(std::ostream& out, const Report& report);
void WriteFacts(std::ostream& out, const Report& report);

// The style sheet, made from report.css by the build.
extern const char* const kReportStyle;

// The parts of the document that several sections look into.
// The source package's or else the material package's tracks of a kind; each with its descriptor, or null.
struct ReportTrack {
  const Json* track;
  const Json* descriptor;
};
[[nodiscard]] std::vector<ReportTrack> TracksOf(const Json& info, const std::string& kind);
[[nodiscard]] std::string LabelHtml(const Json& label);  // the name, with the bytes as a title
[[nodiscard]] std::string RationalHtml(const Json& value);
[[nodiscard]] Timebase TimebaseOf(const Report& report);

#endif  // CLIPPARSER_CLIPINFO_REPORT_H
