#include "clipinfo/InfoText.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "clipinfo/Terminal.h"
#include "clipinfo/Words.h"

namespace {

constexpr std::size_t kValueColumn = 15;

void PrintRow(std::ostream& out, const std::string& name, const std::string& value) {
  const std::size_t width = std::max(kValueColumn, name.size() + 1);
  out << "  " << Toned(name, Tone::Name) << std::string(width - name.size(), ' ')
      << (value == kUnreadable ? Toned(value, Tone::Fault) : value) << '\n';
}

// --- One value ---

// As Word, of a date.
std::string DateWord(const Json& value) {
  std::string text = Word(value);
  if (!value.is_null()) text[text.find('T')] = ' ';
  return text;
}

// Facts in one row: what is not present is left out.
class Facts {
 public:
  Facts& Add(const Json& value, const char* unit = "", const char* lead = "") {
    return value.is_null() ? *this : AddText(lead + Word(value) + unit);
  }
  Facts& AddText(const std::string& text) {
    m_text += (m_text.empty() ? "" : ", ") + text;
    return *this;
  }
  [[nodiscard]] std::string Text() const { return m_text.empty() ? kNotPresent : m_text; }

 private:
  std::string m_text;
};

// --- What the clip is ---

std::string DurationText(const Json& info) {
  const std::string rate = info["edit_rate"].is_null() ? "" : " at " + Word(info["edit_rate"]) + " per second";
  if (info["duration"].is_null()) return "not known yet" + rate;
  return Word(info["duration"]) + " edit units" + rate + ", " + Word(info["duration_timecode"]);
}

// The height is that of one field where a frame is stored as two (ST 377-1, frame layouts 1 and 4).
std::string SizeText(const Json& size, const Json& layout) {
  const int value = layout.is_null() ? 0 : layout["value"].get<int>();
  const bool isFields = value == 1 || value == 4;
  const std::string width = Word(size["width"]) + "x";
  if (!isFields) return width + Word(size["height"]);
  return width + std::to_string(2 * size["height"].get<unsigned long long>()) + " as two fields";
}

// A label's name without the family that the row tells anyway.
Json Shortened(const Json& label, std::string_view family) {
  const std::string name = Word(label);
  const std::size_t place = name.find(family);
  return label.is_null() || place == std::string::npos ? label : Json(name.substr(place + family.size()));
}

std::string PictureText(const Json& descriptor) {
  Facts facts;
  const Json& size = descriptor["display"].is_null() ? descriptor["stored"] : descriptor["display"];
  if (!size.is_null()) facts.AddText(SizeText(size, descriptor["frame_layout"]));
  facts.Add(descriptor["aspect_ratio"]).Add(descriptor["sample_rate"], " per second");
  facts.Add(descriptor["component_bits"], " bits").Add(descriptor["coding"]);
  facts.Add(Shortened(Shortened(descriptor["transfer"], "CaptureGamma_"), "Transfer_"), "", "transfer ");
  return facts.Add(Shortened(descriptor["primaries"], "ColorPrimaries_"), "", "primaries ").Text();
}

std::string SoundText(const Json& descriptor) {
  Facts facts;
  facts.Add(descriptor["sampling_rate"], " Hz").Add(descriptor["bits"], " bits");
  return facts.Add(descriptor["channels"], descriptor["channels"] == 1 ? " channel" : " channels").Text();
}

std::string DescriptorText(const std::string& kind, const Json& descriptor) {
  if (descriptor.is_null()) return "no descriptor";
  if (kind == "picture") return PictureText(descriptor);
  return kind == "sound" ? SoundText(descriptor) : Word(descriptor["container"]);
}

std::string ComponentText(const std::string& kind, const Json& component) {
  if (component["kind"] != "timecode") {
    return DescriptorText(kind, component.contains("descriptor") ? component["descriptor"] : Json());
  }
  if (component["start"].is_null()) return kNotPresent;
  const Json& start = component["start"];
  return "from " + Word(start) + ", base " + Word(start["base"]) + (start["drop_frame"] == true ? ", drop frame" : "");
}

// What the tracks of a kind carry, and how many carry the same.
using Groups = std::vector<std::pair<std::string, unsigned long>>;
Groups GroupsOf(const std::string& kind, const Json& tracks) {
  Groups groups;
  for (const Json& track : tracks) {
    if (track.is_null() || track["kind"] != kind || track["components"].empty()) continue;
    const std::string text = ComponentText(kind, track["components"][0]);
    auto group = std::find_if(groups.begin(), groups.end(), [&](const auto& known) { return known.first == text; });
    if (group == groups.end()) group = groups.emplace(groups.end(), text, 0);
    ++group->second;
  }
  return groups;
}

void PrintEssence(std::ostream& out, const Json& package) {
  constexpr const char* kRows[][2] = {
      {"timecode", "Timecode"}, {"picture", "Picture"}, {"sound", "Sound"}, {"data", "Data"}};
  for (const auto& [kind, title] : kRows) {
    for (const auto& [text, count] : GroupsOf(kind, package["tracks"])) {
      PrintRow(out, title, count == 1 ? text : Counted(count, "track") + " of " + text);
    }
  }
}

void PrintHead(std::ostream& out, const Json& info) {
  PrintRow(out, "Duration", DurationText(info));
  const auto material = std::find_if(info["packages"].begin(), info["packages"].end(), [](const Json& package) {
    return !package.is_null() && package["kind"] == "material";
  });
  if (material != info["packages"].end()) {
    PrintEssence(out, *material);
    PrintRow(out, "Recorded", DateWord((*material)["created"]));
  }
  PrintRow(out, "Last modified", DateWord(info["last_modified"]));
  for (const Json& identification : info["identifications"]) {
    Facts facts;
    facts.Add(identification["company"]).Add(identification["product"]).Add(identification["version"]);
    PrintRow(out, "Written by", facts.AddText(DateWord(identification["date"])).Text());
  }
  PrintRow(out, "Pattern", Word(info["operational_pattern"]));
  for (const Json& container : info["essence_containers"]) PrintRow(out, "Container", Word(container));
}

// --- Camera information ---

bool isAllZero(const Json& bytes) {
  return bytes.is_string() && Word(bytes).find_first_not_of("0.") == std::string::npos;
}

void PrintCamera(std::ostream& out, const Json& camera) {
  constexpr const char* kRows[][3] = {{"user_bits", "User bits", ""},
                                      {"package_creation_date", "Creation date", ""},
                                      {"audio_channels", "Audio channels", ""},
                                      {"video_bit_rate", "Video bit rate", " bits per second"},
                                      {"image_stabilizer", "Stabilizer", ""}};
  const bool isIndexed = camera["no_index_reason"].is_null();
  if (!isIndexed) PrintRow(out, "Camera", "edit unit 0: " + Word(camera["no_index_reason"]));
  const Json& unreadable = camera["unreadable"];
  for (const auto& [member, title, unit] : kRows) {
    const bool isUnreadable = std::find(unreadable.begin(), unreadable.end(), member) != unreadable.end();
    if (isUnreadable && !isIndexed) continue;
    const Json& value = camera[member];
    PrintRow(out, title,
             isUnreadable       ? kUnreadable
             : isAllZero(value) ? "not set"
                                : Word(value) + (value.is_null() ? "" : unit));
  }
  const Json& sequence = camera["sequence_information"];
  if (sequence.is_null()) return;
  PrintRow(out, "In a sequence",
           "from position " + Word(sequence["start_position"]) + ", start timecode " +
               Word(sequence["start_timecode"]) + " frames");
}

// --- Tables ---

std::string Aligned(const std::string& text, int width) {
  const std::size_t size = static_cast<std::size_t>(std::abs(width));
  const std::string fill(size > text.size() ? size - text.size() : 0, ' ');
  return width < 0 ? text + fill : fill + text;
}

// Columns: member, title, width; negative ones are aligned to the left.
struct Column {
  const char* member;
  const char* title;
  int width;
};

template <class Columns>
void PrintTable(std::ostream& out, const Columns& columns, const Json& rows) {
  std::string head = "   ";
  for (const Column& column : columns) head += " " + Aligned(column.title, column.width);
  out << Toned(head, Tone::Name) << '\n';
  for (const Json& row : rows) {
    std::string line = "   ";
    for (const Column& column : columns) {
      line += " " + Aligned(row.contains(column.member) ? Word(row[column.member]) : "", column.width);
    }
    line.erase(line.find_last_not_of(' ') + 1);
    out << line << '\n';
  }
}

void PrintPartitions(std::ostream& out, const Json& info) {
  constexpr Column kColumns[] = {{"kind", "kind", -10},
                                 {"status", "status", -18},
                                 {"offset", "offset", 15},
                                 {"body_sid", "body SID", 9},
                                 {"index_sid", "index SID", 10},
                                 {"header_bytes", "header bytes", 13},
                                 {"index_bytes", "index bytes", 12}};
  Json rows = info["partitions"]["list"];
  for (Json& row : rows) {
    if (row["kind"].is_null()) row["kind"] = kUnreadable;
  }
  const Json& version = info["partition_version"];
  PrintRow(out, "Partitions",
           std::to_string(rows.size()) + " from the " + Word(info["partitions"]["source"]) + ", version " +
               Word(version["major"]) + "." + Word(version["minor"]) +
               (info["is_header_index_missing"] == true ? ", no index in the header partition" : ""));
  PrintTable(out, kColumns, rows);
}

// What the component of a track is, in a word or two.
std::string OriginText(const Json& track) {
  const Json& components = track["components"];
  if (components.empty()) return "no components";
  const Json& first = components[0];
  const std::string more = components.size() > 1 ? ", and " + std::to_string(components.size() - 1) + " more" : "";
  if (first["kind"] == "timecode") return "timecode from " + Word(first["start"]) + more;
  if (first["kind"].is_null()) return "neither timecode nor source clip" + more;
  if (isAllZero(first["source_package"])) return "the source" + more;  // ST 377-1: the chain ends here
  return "track " + Word(first["source_track"]) + " from " + Word(first["start_position"]) + more;
}

void PrintPackages(std::ostream& out, const Json& packages) {
  constexpr Column kColumns[] = {{"id", "track", 10},     {"kind", "kind", -9},        {"edit_rate", "edit rate", 11},
                                 {"origin", "origin", 7}, {"duration", "duration", 9}, {"source", "source", -1}};
  for (const Json& package : packages) {
    if (package.is_null()) {
      PrintRow(out, "Package", kUnreadable);
      continue;
    }
    Json rows = package["tracks"];
    for (Json& row : rows) {
      if (row.is_null()) row = {{"id", kUnreadable}, {"kind", ""}};
      if (row["kind"].is_null()) row["kind"] = "other";
      if (row.contains("components")) row["source"] = OriginText(row);
    }
    const unsigned long leftOut = package["tracks_left_out"].get<unsigned long>();
    PrintRow(out, package["kind"] == "material" ? "Material" : "Source",
             Counted(rows.size() + leftOut, "track") + (leftOut == 0 ? "" : ", the first of which are"));
    if (!rows.empty()) PrintTable(out, kColumns, rows);
  }
}

}  // namespace

void PrintInfo(std::ostream& out, const Json& document) {
  out << Toned(Escaped(document["path"].get_ref<const std::string&>()), Tone::Heading) << '\n';
  PrintHead(out, document);
  PrintCamera(out, document["camera"]);
  PrintPartitions(out, document);
  PrintPackages(out, document["packages"]);
  out << '\n';
}
