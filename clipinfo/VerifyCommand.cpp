#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <memory>
#include <optional>
#include <utility>

#include "clipinfo/Checksum.h"
#include "clipinfo/Clip.h"
#include "clipinfo/ClipList.h"
#include "clipinfo/Commands.h"
#include "clipinfo/Faults.h"
#include "clipinfo/Json.h"
#include "clipinfo/Progress.h"
#include "clipinfo/Text.h"
#include "clipinfo/Verification.h"

namespace {

constexpr int kExitDamaged = 1;
constexpr int kExitNotOpened = 2;

constexpr const char* kFooter = R"(Examples:
  clipinfo verify A.MXF                    is this clip whole?
  clipinfo verify -j 4 /media/card         each clip of a card, four at a time
  clipinfo verify --checksum=md5 A.MXF     with a hash of each element's bytes

Damage is told by its place in the file and its edit unit; notes tell what is legal and worth knowing. Of each kind of
finding the first 20 are listed.
Exit status, of several clips the greatest:
  0  every clip is whole
  1  a clip is damaged
  2  a clip cannot be opened, or wrong arguments)";

struct VerifyOptions {
  ClipList clips;
  ChecksumKind checksum = ChecksumKind::None;
  bool isJson = false;
};

const char* StatusText(const Verification& verification) {
  if (!verification.fault.empty()) return "unreadable";
  return verification.findings.isDamaged() ? "damaged" : "whole";
}

int StatusOf(const Verification& verification) {
  if (!verification.fault.empty()) return kExitNotOpened;
  return verification.findings.isDamaged() ? kExitDamaged : kExitOK;
}

std::string Counted(unsigned long long count, const std::string& name) {
  return std::to_string(count) + ' ' + name + (count == 1 ? "" : "s");
}

// Calls `row` with the hash of each element of a content package.
class ElementHashes {
 public:
  using Row = std::function<void(const ContentPackage&, std::size_t, const PackageElement&, const std::string&)>;

  ElementHashes(ChecksumKind kind, Row row) : m_checksum(MakeChecksum(kind)), m_row(std::move(row)) {}

  void Take(const ContentPackage& package, ParseMetaData& reader) {
    for (std::size_t i = 0; m_checksum && i < package.elements.size(); ++i) {
      const PackageElement& element = package.elements[i];
      m_row(package, i, element, m_checksum->Of(reader, element.valueOffset, element.length));
    }
  }

 private:
  std::unique_ptr<Checksum> m_checksum;
  Row m_row;
};

// Verifies a clip; with a progress bar when it is the only one at a time.
Verification Verify(const VerifyOptions& options, const std::string& path, const ElementHashes::Row& row) {
  ElementHashes hashes(options.checksum, row);
  std::optional<Progress> progress;
  return VerifyClip(path, [&](const EssenceFacts& facts, const ContentPackage& package, ParseMetaData& reader) {
    hashes.Take(package, reader);
    const bool isFirst = options.clips.jobs == 1 && !progress;
    if (isFirst) progress.emplace(static_cast<unsigned long long>(std::max(1LL, facts.duration)));
    unsigned long long bytes = 0;
    for (const PackageElement& element : package.elements) bytes += element.length;
    if (progress) progress->Step(bytes);
  });
}

void PrintFinding(std::ostream& out, const Finding& finding) {
  const FindingWording& wording = WordingOf(finding.kind);
  out << (wording.isNote ? "  note    " : "  damage  ") << OffsetText(finding.offset);
  if (finding.editUnit) out << ", edit unit " << *finding.editUnit;
  out << ": " << wording.name << ": " << wording.text;
  if (!finding.detail.empty()) out << ": " << Escaped(finding.detail);
  out << '\n';
}

void PrintVerdict(std::ostream& out, const std::string& path, const Verification& verification) {
  const VerifyFindings& findings = verification.findings;
  out << Escaped(path) << ": " << StatusText(verification) << ", " << Counted(verification.packages, "edit unit")
      << ", " << Counted(verification.partitions.size(), "partition");
  if (findings.isDamaged()) out << ", " << Counted(findings.DamageCount(), "finding");
  if (findings.NoteCount() != 0) out << ", " << Counted(findings.NoteCount(), "note");
  out << '\n';
  for (const Finding& finding : findings.InFileOrder()) PrintFinding(out, finding);
  for (std::size_t i = 0; i < kFindingKinds; ++i) {
    const auto kind = static_cast<FindingKind>(i);
    const unsigned long long count = findings.Count(kind);
    if (count <= VerifyFindings::kMostPerKind) continue;
    out << "  and " << count - VerifyFindings::kMostPerKind << " more: " << WordingOf(kind).name << '\n';
  }
}

int VerifyAsText(const VerifyOptions& options, std::ostream& out, std::ostream& fault, const std::string& path) {
  Verification verification;
  const std::string reason = FaultOf([&] {
    verification = Verify(options, path,
                          [&out](const ContentPackage& package, std::size_t number, const PackageElement& element,
                                 const std::string& hash) {
                            out << hash << "  unit " << package.editUnit << "  element " << number << "  "
                                << element.valueOffset << "  " << element.length << '\n';
                          });
  });
  if (reason.empty()) PrintVerdict(out, path, verification);
  const std::string& told = reason.empty() ? verification.fault : reason;
  if (told.empty()) return StatusOf(verification);
  PrintFault(fault, path, told);
  return kExitNotOpened;
}

Json FindingJson(const Finding& finding) {
  const FindingWording& wording = WordingOf(finding.kind);
  return {{"kind", wording.name},
          {"text", wording.text},
          {"offset", NumberJson(finding.offset)},
          {"edit_unit", finding.editUnit ? NumberJson(*finding.editUnit) : Json()},
          {"detail", finding.detail.empty() ? Json() : Json(finding.detail)}};
}

int VerifyAsJson(const VerifyOptions& options, Json& clip, const std::string& path) {
  Json elements = Json::array();
  const Verification verification = Verify(options, path,
                                           [&elements](const ContentPackage& package, std::size_t number,
                                                       const PackageElement& element, const std::string& hash) {
                                             elements.push_back({{"edit_unit", NumberJson(package.editUnit)},
                                                                 {"element", number},
                                                                 {"offset", NumberJson(element.valueOffset)},
                                                                 {"size", NumberJson(element.length)},
                                                                 {"checksum", hash}});
                                           });
  clip["status"] = StatusText(verification);
  clip["fault"] = verification.fault.empty() ? Json() : Json(verification.fault);
  clip["edit_units"] = NumberJson(verification.packages);
  clip["partitions"] = verification.partitions.size();
  clip["damage"] = Json::array();
  clip["notes"] = Json::array();
  for (const Finding& finding : verification.findings.InFileOrder()) {
    clip[WordingOf(finding.kind).isNote ? "notes" : "damage"].push_back(FindingJson(finding));
  }
  clip["counts"] = Json::object();
  for (std::size_t i = 0; i < kFindingKinds; ++i) {
    const auto kind = static_cast<FindingKind>(i);
    const unsigned long long count = verification.findings.Count(kind);
    if (count != 0) clip["counts"][WordingOf(kind).name] = NumberJson(count);
  }
  if (options.checksum != ChecksumKind::None) clip["elements"] = std::move(elements);
  return StatusOf(verification);
}

}  // namespace

Runner DefineVerify(CLI::App& app) {
  CLI::App* const verify = app.add_subcommand("verify", "Tell whether clips are whole");
  const auto options = std::make_shared<VerifyOptions>();
  options->clips.DefineOn(*verify);
  verify->add_option("--checksum", options->checksum, "A hash of each element's bytes: xxh3 or md5")
      ->transform(CLI::CheckedTransformer(ChecksumNames()))
      ->type_name("KIND");
  DefineJSON(*verify, options->isJson);
  verify->footer(kFooter);
  return [options] {
    if (options->isJson) {
      return PrintDocuments(
          options->clips, "verify",
          [&](Json& clip, const std::string& path) { return VerifyAsJson(*options, clip, path); }, kExitNotOpened);
    }
    return ForEachClip(options->clips, [&](std::ostream& out, std::ostream& fault, const std::string& path) {
      return VerifyAsText(*options, out, fault, path);
    });
  };
}
