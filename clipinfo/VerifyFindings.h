#ifndef CLIPPARSER_CLIPINFO_VERIFYFINDINGS_H
#define CLIPPARSER_CLIPINFO_VERIFYFINDINGS_H

#include <array>
#include <optional>
#include <string>
#include <vector>

// What can be wrong with a clip, in the order of the table of wordings.
enum class FindingKind {
  // Packets.
  FileStart,
  PacketMissing,
  PacketOverrun,
  PacketUnexpected,
  Fill,
  Abandoned,
  // Random index pack.
  RandomIndexLength,
  RandomIndexEntry,
  RandomIndexMissing,
  RandomIndexOrder,
  // Partitions.
  PartitionUnlisted,
  PartitionPackFields,
  PartitionStatus,
  PartitionPlace,
  PartitionPrevious,
  PartitionFooter,
  PartitionKAG,
  PartitionHeaderBytes,
  PartitionIndexBytes,
  PartitionStreams,
  PartitionBodyOffset,
  PartitionDiffers,
  FooterMissing,
  // Header metadata.
  HeaderMissing,
  Primer,
  Tag,
  SetMalformed,
  SetProperty,
  SetDuplicate,
  SetUnreferenced,
  Reference,
  PackageReference,
  Track,
  TrackDuration,
  EssenceTrack,
  // Index.
  IndexMissing,
  IndexSegment,
  IndexStreams,
  IndexCoverage,
  IndexEntry,
  IndexPlace,
  // Essence.
  ElementMissing,
  ElementKey,
  SystemItem,
  Continuity,
  Duration,
  // Notes.
  NoRandomIndex,
  NotAnswered,
  OpenPartition,
  SupersededIndex,
  OpenEnd,
};
constexpr std::size_t kFindingKinds = static_cast<std::size_t>(FindingKind::OpenEnd) + 1;

// The name by which programs know a kind, and what it means. A note is legal and worth knowing; the rest is damage.
struct FindingWording {
  const char* name;
  const char* text;
  bool isNote;
};
[[nodiscard]] const FindingWording& WordingOf(FindingKind kind);

struct Finding {
  FindingKind kind;
  unsigned long long offset;  // in the file
  std::optional<unsigned long long> editUnit;
  std::string detail;  // may be empty
};

// The findings of one clip. Of each kind the first few are kept and the rest counted, so that a hostile file costs no
// memory.
class VerifyFindings {
 public:
  static constexpr unsigned long long kMostPerKind = 20;

  void Add(FindingKind kind, unsigned long long offset, std::string detail = {},
           std::optional<unsigned long long> editUnit = {});

  // In the order of their offsets.
  [[nodiscard]] std::vector<Finding> InFileOrder() const;
  [[nodiscard]] unsigned long long Count(FindingKind kind) const;
  [[nodiscard]] unsigned long long DamageCount() const { return CountOf(false); }
  [[nodiscard]] unsigned long long NoteCount() const { return CountOf(true); }
  [[nodiscard]] bool isDamaged() const { return DamageCount() != 0; }

 private:
  [[nodiscard]] unsigned long long CountOf(bool isNote) const;

  std::vector<Finding> m_findings;
  std::array<unsigned long long, kFindingKinds> m_counts{};
};

// A place in a file as people and hex editors write it: 663040 (0xA1E00).
[[nodiscard]] std::string OffsetText(unsigned long long offset);
// "1 instead of 2".
[[nodiscard]] std::string InsteadOf(const std::string& name, unsigned long long found, unsigned long long expected);

#endif  // CLIPPARSER_CLIPINFO_VERIFYFINDINGS_H
