#ifndef CLIPPARSER_CLIPINFO_SUMMARY_H
#define CLIPPARSER_CLIPINFO_SUMMARY_H

#include <functional>
#include <ostream>

#include "clipinfo/Clip.h"
#include "clipinfo/Text.h"

// The parts of the summary that the info command prints.

// A row for each partition of the file: those that the random index pack lists or, in a file without one, those that
// the links lead to, backwards from the footer.
void PrintPartitions(std::ostream& out, Clip& clip);

// The material and source packages in the order in which the header lists them, each with its tracks, their components
// and their descriptors.
void PrintPackages(std::ostream& out, const HeaderMetadata& header);

// What the clip's timecode counts in: the first timecode of the first material package or, without one, the edit rate
// of its first track.
[[nodiscard]] Timebase ClipTimebase(const HeaderMetadata& header);

// Whatever answers for the tags of a set, component or descriptor.
using Ask = std::function<OxSharedPtr<OxObject>(_LocalTag)>;

struct Item {
  _LocalTag tag;
  const char* name;
};
template <class Items>
void PrintItems(std::ostream& out, unsigned int indent, const Items& items, const Ask& ask) {
  for (const Item& item : items) PrintRow(out, indent, item.name, ValueText(ask(item.tag)));
}

#endif  // CLIPPARSER_CLIPINFO_SUMMARY_H
