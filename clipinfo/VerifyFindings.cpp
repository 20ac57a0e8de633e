#include "clipinfo/VerifyFindings.h"

#include <algorithm>
#include <sstream>
#include <utility>

namespace {

// In the order of FindingKind. Names and texts stay as they are once released: people search for them.
constexpr FindingWording kWordings[] = {
    {"file-start", "the file does not begin with a header partition pack", false},
    {"packet-missing", "no packet begins here", false},
    {"packet-overrun", "the packet runs past the end of its partition", false},
    {"packet-unexpected", "a packet of this key does not belong here", false},
    {"fill", "the fill item does not end on the KAG", false},
    {"abandoned", "too much is damaged here; the rest is not looked at", false},
    {"random-index-length", "the overall length at the end of the file does not lead to the random index pack", false},
    {"random-index-entry", "the random index pack lists what is not there", false},
    {"random-index-missing", "the random index pack leaves a partition out", false},
    {"random-index-order", "the random index pack is not in file order", false},
    {"partition-unlisted", "a partition that nothing leads to", false},
    {"partition-pack", "the partition pack is malformed", false},
    {"partition-status", "the partition's kind or status is not one that belongs here", false},
    {"partition-place", "ThisPartition is not where the partition lies", false},
    {"partition-previous", "PreviousPartition is not the partition before", false},
    {"partition-footer", "FooterPartition is not the footer", false},
    {"partition-kag", "the partition pack and its fill do not take one KAG", false},
    {"partition-header-bytes", "HeaderByteCount is not the size of the header metadata", false},
    {"partition-index-bytes", "IndexByteCount is not the size of the index", false},
    {"partition-streams", "the stream identifiers do not fit what the partition holds", false},
    {"partition-body-offset", "BodyOffset is not the essence before this partition", false},
    {"partition-differs", "the partition pack contradicts the rest of the clip", false},
    {"footer-missing", "no footer partition: the recording was not finished, or the file was cut", false},
    {"header-missing", "no header metadata", false},
    {"primer", "the primer pack is malformed", false},
    {"tag", "a property that no one knows, or that does not belong in this set", false},
    {"set-malformed", "the metadata set is malformed", false},
    {"set-property", "a property of the metadata set is missing or wrong", false},
    {"set-duplicate", "two metadata sets have one identifier", false},
    {"set-unreferenced", "nothing refers to the metadata set", false},
    {"reference", "a reference leads to no set of the right kind", false},
    {"package-reference", "a source clip leads to no track of a package", false},
    {"track", "the track contradicts its package", false},
    {"track-duration", "the durations of the tracks contradict each other", false},
    {"essence-track", "tracks and essence elements do not match", false},
    {"index-missing", "the clip has no index", false},
    {"index-segment", "the index table segment is malformed", false},
    {"index-streams", "the index table segment is for another stream or edit rate", false},
    {"index-coverage", "the index does not cover each edit unit once", false},
    {"index-entry", "the index entry contradicts the entries around it", false},
    {"index-place", "the index leads to another place", false},
    {"element-missing", "the content package lacks an element, or has one too many", false},
    {"element-key", "the element has another key than in the other content packages", false},
    {"system-item", "the system metadata pack differs from those around it", false},
    {"continuity", "the continuity count does not follow", false},
    {"duration", "the number of content packages is not the clip's duration", false},
    {"no-random-index", "no random index pack; partitions were found by their links", true},
    {"not-answered", "legal, but the library does not answer for it", true},
    {"open-partition", "the partition is open or incomplete", true},
    {"superseded-index", "a later index table segment replaces this one", true},
    {"open-end", "the recording stops before a picture that is to be shown", true},
};
static_assert(std::size(kWordings) == kFindingKinds, "a wording for each kind");

}  // namespace

const FindingWording& WordingOf(FindingKind kind) { return kWordings[static_cast<std::size_t>(kind)]; }

void VerifyFindings::Add(FindingKind kind, unsigned long long offset, std::string detail,
                         std::optional<unsigned long long> editUnit) {
  if (++m_counts[static_cast<std::size_t>(kind)] > kMostPerKind) return;
  m_findings.push_back({kind, offset, editUnit, std::move(detail)});
}

std::vector<Finding> VerifyFindings::InFileOrder() const {
  std::vector<Finding> findings = m_findings;
  std::stable_sort(findings.begin(), findings.end(),
                   [](const Finding& a, const Finding& b) { return a.offset < b.offset; });
  return findings;
}

unsigned long long VerifyFindings::Count(FindingKind kind) const { return m_counts[static_cast<std::size_t>(kind)]; }

unsigned long long VerifyFindings::CountOf(bool isNote) const {
  unsigned long long count = 0;
  for (std::size_t i = 0; i < kFindingKinds; ++i) count += kWordings[i].isNote == isNote ? m_counts[i] : 0;
  return count;
}

std::string OffsetText(unsigned long long offset) {
  std::ostringstream text;
  text << offset << " (0x" << std::hex << std::uppercase << offset << ')';
  return text.str();
}

std::string InsteadOf(const std::string& name, unsigned long long found, unsigned long long expected) {
  return name + " is " + std::to_string(found) + " instead of " + std::to_string(expected);
}
