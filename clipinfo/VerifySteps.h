#ifndef CLIPPARSER_CLIPINFO_VERIFYSTEPS_H
#define CLIPPARSER_CLIPINFO_VERIFYSTEPS_H

#include "clipinfo/VerifyEssence.h"
#include "clipinfo/VerifyFile.h"
#include "clipinfo/VerifyIndex.h"
#include "clipinfo/VerifyMetadata.h"

// The steps of a verification, in their order. Each tells what it finds as findings and goes on as far as it can; the
// work of each is bounded by the bytes of the file.

// Partitions by the random index pack and the links; where these disagree by a walk over all packets. False when there
// is no partition to work with.
[[nodiscard]] bool FindPartitions(VerifyFile& file);
// The part of each partition before its essence.
void CheckSections(VerifyFile& file);
// What the partition packs and the random index pack say of partitions, links and streams.
void CheckPartitions(VerifyFile& file);

// Each header metadata by itself: primer and sets, references between them, packages and tracks. The facts are those of
// the first one.
[[nodiscard]] EssenceFacts CheckMetadata(VerifyFile& file);
// Steps of CheckMetadata.
[[nodiscard]] MetadataGraph ReadMetadata(VerifyFile& file, const VerifiedPartition& partition);
void CheckGraph(VerifyFile& file, const MetadataGraph& graph);
void CheckTracks(VerifyFile& file, const MetadataGraph& graph, EssenceFacts& facts);

// Index table segments by themselves and their entries among each other.
[[nodiscard]] VerifyIndex CheckIndex(VerifyFile& file, const EssenceFacts& facts);
// Content packages by themselves, among each other and against the index. `sink` may be empty.
void CheckEssence(VerifyFile& file, const EssenceFacts& facts, VerifyIndex& index, const PackageSink& sink);

#endif  // CLIPPARSER_CLIPINFO_VERIFYSTEPS_H
