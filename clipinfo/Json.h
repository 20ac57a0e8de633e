#ifndef CLIPPARSER_CLIPINFO_JSON_H
#define CLIPPARSER_CLIPINFO_JSON_H

#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <type_traits>

#include "clipinfo/ClipList.h"
#include "clipinfo/Faults.h"
#include "clipinfo/Text.h"

// What --json prints: one envelope with a document for each clip, see docs/json.md and docs/clipinfo.schema.json.
// Members keep the order in which they are set.
using Json = nlohmann::ordered_json;

// The document of one clip: null for what the clip does not tell.

constexpr long long kMostExact = 1LL << 53;
// A whole number; as a string beyond 2^53, where the numbers of many JSON readers lose digits.
template <class Integer>
[[nodiscard]] Json NumberJson(Integer number) {
  bool isExact = true;
  if constexpr (std::is_signed_v<Integer>) {
    isExact = number >= -kMostExact && number <= kMostExact;
  } else {
    isExact = number <= static_cast<unsigned long long>(kMostExact);
  }
  return isExact ? Json(number) : Json(std::to_string(number));
}
[[nodiscard]] Json LabelJson(const OxSharedPtr<MxfUUID>& label);  // {"name", "hex"}; the name null when not known
[[nodiscard]] Json RationalJson(const _Rational& value);          // {"numerator", "denominator"}
[[nodiscard]] Json DateJson(const _Timestamp& date);              // "2024-02-29T12:30:15.500", null when not set
// {"frames", "text", "base", "drop_frame"}; text and base null when it is not known what the frames count in.
[[nodiscard]] Json TimecodeJson(long long frames, const Timebase& timebase);
// Any metadata value: identifiers and bytes as dotted hexadecimal, SMPTE labels as LabelJson, lists as arrays.
[[nodiscard]] Json ValueJson(const OxSharedPtr<OxObject>& value);

// Adds the members of a clip's document, behind its "path"; throws what stands in the way. The exit status.
using DescribeClip = std::function<int(Json& clip, const std::string& path)>;

// Prints the envelope with the documents of a list of clips, each as it is ready and in the list's order. A clip that
// cannot be described has "error" in place of its members; the fault is told on the standard error as well, and its
// exit status is `faultStatus`. Returns the greatest exit status.
[[nodiscard]] int PrintDocuments(const ClipList& list, const char* command, const DescribeClip& describe,
                                 int faultStatus = kExitFailed);

// The document of a clip that cannot be described.
[[nodiscard]] Json FailedClip(const std::string& path, const std::string& reason);
// What stands around and between the documents, for a command that writes them piece by piece.
[[nodiscard]] Frame EnvelopeFrame(const char* command);
// A document as text; bytes that are no UTF-8 are replaced by U+FFFD.
[[nodiscard]] std::string JsonText(const Json& document, int indent = -1);

#endif  // CLIPPARSER_CLIPINFO_JSON_H
