#ifndef CLIPPARSER_CLIPINFO_VERIFICATION_H
#define CLIPPARSER_CLIPINFO_VERIFICATION_H

#include <string>
#include <vector>

#include "clipinfo/VerifyEssence.h"
#include "clipinfo/VerifyFile.h"
#include "clipinfo/VerifyMetadata.h"

// What a verification found out about a clip.
struct Verification {
  VerifyFindings findings;
  std::string fault;  // why the library cannot open the clip; empty when it can
  EssenceFacts facts;
  std::vector<VerifiedPartition> partitions;
  unsigned long long packages = 0;  // content packages that were met
  unsigned long long fileSize = 0;
};

// Gets each content package, when the facts are known, and a reader over the file.
using VerifySink = std::function<void(const EssenceFacts& facts, const ContentPackage& package, ParseMetaData& reader)>;
// Verifies a clip. `sink` may be empty. Throws CommandError when there is no file to read or nothing of a clip in it.
[[nodiscard]] Verification VerifyClip(const std::string& path, const VerifySink& sink);

#endif  // CLIPPARSER_CLIPINFO_VERIFICATION_H
