#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>

#include "clipinfo/Clip.h"
#include "clipinfo/Commands.h"
#include "clipinfo/MetadataTree.h"
#include "clipinfo/Terminal.h"
#include "clipinfo/Words.h"

namespace {

constexpr const char* kFooter = R"(Examples:
  clipinfo tree A.MXF                 every set and property of the header metadata
  clipinfo tree A.MXF | grep -i date  what the clip says about dates
  clipinfo tree --json A.MXF | jq '.. | objects | select(.set == "Track")'

Exit status:
  0  every tree was printed
  1  a clip could not be opened
  2  wrong arguments)";

constexpr std::size_t kNameWidth = 24;
constexpr std::size_t kMostLetters = 95;  // of raw bytes: 32 of them

struct TreeOptions {
  ClipList clips;
  bool isJSON = false;
};

// --- For people ---

std::string Indent(unsigned int level) { return std::string(std::size_t{level} * 2, ' '); }

std::string BytesText(const Json& bytes) {
  std::string text = Word(bytes);
  if (text.size() <= kMostLetters) return text;
  return text.substr(0, kMostLetters) + "... (" + std::to_string((text.size() + 1) / 3) + " bytes)";
}

std::string NameOf(const Json& item) {
  if (!item["name"].is_null()) return Word(item["name"]);
  return item.contains("label") ? Word(item["label"]) : "unknown";
}

std::string ContentText(const Json& item) {
  if (item.contains("bytes")) return BytesText(item["bytes"]);
  if (item.contains("value")) return Word(item["value"]);
  const auto leftOut = item["left_out"].get<unsigned long>();
  return Counted(item["sets"].size() + leftOut, "set") + (leftOut == 0 ? "" : ", too many to tell of all");
}

void PrintSet(std::ostream& out, const Json& set, unsigned int level) {
  out << Indent(level);
  if (set.contains("not_told")) {
    out << Word(set["instance_uid"]) << ' ' << Toned(Word(set["not_told"]), Tone::Fault) << '\n';
    return;
  }
  out << Toned(set["set"].is_null() ? "Set " + Word(set["key"]) : Word(set["set"]), Tone::Heading)
      << PlaceText(set["offset"].is_string() ? 0 : set["offset"].get<unsigned long long>()) << '\n';
  for (const Json& item : set["items"]) {
    std::string name = NameOf(item);
    name.resize(std::max(kNameWidth, name.size() + 1), ' ');
    out << Indent(level + 1) << Word(item["tag"]) << ' ' << Toned(name, Tone::Name) << ContentText(item) << '\n';
    if (!item.contains("sets")) continue;
    for (const Json& each : item["sets"]) PrintSet(out, each, level + 2);
  }
}

// --- The command ---

int Describe(Json& document, const std::string& path) {
  Clip clip(path);
  document["preface"] = MetadataTree(clip).Preface();
  return kExitOK;
}

int PrintTree(std::ostream& out, std::ostream& fault, const std::string& path) {
  Json document;
  const std::string reason = FaultOf([&] { static_cast<void>(Describe(document, path)); });
  if (!reason.empty()) {
    PrintFault(fault, path, reason);
    return kExitFailed;
  }
  out << Toned(Escaped(path), Tone::Heading) << '\n';
  PrintSet(out, document["preface"], 0);
  out << '\n';
  return kExitOK;
}

}  // namespace

Runner DefineTree(CLI::App& app) {
  CLI::App* const tree = app.add_subcommand("tree", "Print the header metadata as a tree: sets, properties, values");
  const auto options = std::make_shared<TreeOptions>();
  options->clips.DefineOn(*tree);
  tree->footer(kFooter);
  DefineJSON(*tree, options->isJSON);
  return [options] {
    return options->isJSON ? PrintDocuments(options->clips, "tree", Describe) : ForEachClip(options->clips, PrintTree);
  };
}
