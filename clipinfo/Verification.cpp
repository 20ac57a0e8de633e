#include "clipinfo/Verification.h"

#include <filesystem>
#include <memory>
#include <utility>

#include "clipinfo/Clip.h"
#include "clipinfo/Faults.h"
#include "clipinfo/VerifySteps.h"

namespace {

// What is legal and still has no answer from the library.
void NoteUnanswered(VerifyFindings& findings, const Verification& verification, const Clip& clip) {
  if (clip.isHeaderIndexMissing()) {
    findings.Add(FindingKind::NotAnswered, 0,
                 "partition version 1.3 without an index in the header partition: edit units have no answers");
  }
  for (const VerifiedPartition& partition : verification.partitions) {
    const unsigned int sid = partition.pack->BodySID();
    if (partition.hasEssence() && sid != 0 && sid != kEssenceBodySID) {
      findings.Add(FindingKind::NotAnswered, partition.offset, "essence of body SID " + std::to_string(sid));
    }
    const bool isPartOfIndex = partition.segments.size() > 1 && partition.pack->MinorVersion() != 3;
    if (isPartOfIndex) {
      findings.Add(FindingKind::NotAnswered, partition.offset, "all index table segments of a partition but the last");
    }
  }
}

OxSharedPtr<OxStream> OpenFile(const std::string& path) {
  std::error_code error;
  const bool isFile = std::filesystem::is_regular_file(path, error) && std::filesystem::file_size(path, error) > 0;
  if (!isFile || error) return {};
  return MXFStream(CreateOxString(path)).GetStream();
}

}  // namespace

Verification VerifyClip(const std::string& path, const VerifySink& sink) {
  Verification verification;
  std::unique_ptr<Clip> clip;
  verification.fault = FaultOf([&] { clip = std::make_unique<Clip>(path); });
  // A clip that the library refuses can still tell what is wrong with it.
  const OxSharedPtr<OxStream> stream = clip ? clip->Stream().GetStream() : OpenFile(path);
  if (!stream) throw CommandError(verification.fault);

  VerifyFile file(stream, verification.findings);
  if (!FindPartitions(file)) throw CommandError(verification.fault.empty() ? "no partition" : verification.fault);
  CheckSections(file);
  CheckPartitions(file);
  verification.facts = CheckMetadata(file);
  VerifyIndex index = CheckIndex(file, verification.facts);
  CheckEssence(file, verification.facts, index, [&](const ContentPackage& package) {
    ++verification.packages;
    if (sink) sink(verification.facts, package, file.Reader());
  });
  verification.partitions = std::move(file.partitions);
  verification.fileSize = stream->Length();
  if (clip) NoteUnanswered(verification.findings, verification, *clip);
  return verification;
}
