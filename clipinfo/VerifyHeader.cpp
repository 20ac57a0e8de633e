#include "clipinfo/VerifySteps.h"

namespace {

// The streams that the partitions carry are those that the header metadata tells of.
void CheckStreams(VerifyFile& file, const EssenceFacts& facts) {
  for (const VerifiedPartition& partition : file.partitions) {
    const unsigned int body = partition.pack->BodySID();
    const unsigned int index = partition.pack->IndexSID();
    const bool isBodyKnown = body == 0 || facts.bodySIDs.count(body) != 0;
    const bool isIndexKnown = index == 0 || facts.indexSIDs.empty() || facts.indexSIDs.count(index) != 0;
    if (!isBodyKnown) {
      file.findings.Add(FindingKind::PartitionStreams, partition.offset,
                        "BodySID " + std::to_string(body) + " is no essence container's");
    }
    if (!isIndexKnown) {
      file.findings.Add(FindingKind::PartitionStreams, partition.offset,
                        "IndexSID " + std::to_string(index) + " is no essence container's");
    }
  }
}

}  // namespace

EssenceFacts CheckMetadata(VerifyFile& file) {
  EssenceFacts facts;
  bool isFound = false;
  for (const VerifiedPartition& partition : file.partitions) {
    if (partition.sets.empty() && partition.primers.empty()) continue;
    const MetadataGraph graph = ReadMetadata(file, partition);
    EssenceFacts found;
    CheckGraph(file, graph);
    CheckTracks(file, graph, found);
    if (!isFound) facts = found;
    isFound = true;
  }
  if (!isFound) file.findings.Add(FindingKind::HeaderMissing, 0);
  CheckStreams(file, facts);
  return facts;
}
