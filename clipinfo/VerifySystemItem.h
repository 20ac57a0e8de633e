#ifndef CLIPPARSER_CLIPINFO_VERIFYSYSTEMITEM_H
#define CLIPPARSER_CLIPINFO_VERIFYSYSTEMITEM_H

#include <optional>

#include "clipinfo/VerifyEssence.h"
#include "klv/SystemMetadataPack.h"

// Compares the system items of a clip (ST 385): the continuity count goes up by one, modulo 65,536; what tells of the
// content packages is the same in all of them.
class SystemItemCheck {
 public:
  explicit SystemItemCheck(VerifyFile& file) : m_file(file) {}

  // The first element is a system metadata pack.
  void Check(const ContentPackage& package);

 private:
  void CheckLikeness(const ContentPackage& package, SystemMetadataPack& pack);
  void CheckContinuity(const ContentPackage& package, unsigned short count);
  void CheckMetadataSet(const ContentPackage& package);

  VerifyFile& m_file;
  OxSharedPtr<SystemMetadataPack> m_first;
  unsigned short m_expected = 0;
  unsigned short m_last = 0;
};

// The keys of the content packages of a partition: those that most have of the first ones from an offset on.
[[nodiscard]] std::vector<MxfUUID> ProbeShape(VerifyFile& file, const VerifiedPartition& partition,
                                              unsigned long long from);

[[nodiscard]] std::vector<unsigned char> KeyBytes(const MxfUUID& key);
// Of the track that an essence element belongs to: the last four bytes of its key.
[[nodiscard]] unsigned int TrackNumber(const MxfUUID& key);

#endif  // CLIPPARSER_CLIPINFO_VERIFYSYSTEMITEM_H
