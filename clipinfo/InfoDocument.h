#ifndef CLIPPARSER_CLIPINFO_INFODOCUMENT_H
#define CLIPPARSER_CLIPINFO_INFODOCUMENT_H

#include "clipinfo/Clip.h"
#include "clipinfo/Json.h"

// What the info command tells of a clip; its members are described in docs/json.md. The text for people is made from
// the same document, see InfoText.h.

// Adds everything to a clip's document.
void AddInfo(Json& document, Clip& clip);

// The partitions of the file: those that the random index pack lists or, in a file without one, those that the links
// lead to, backwards from the footer.
[[nodiscard]] Json PartitionsJson(Clip& clip);
// The material and source packages in the order in which the header lists them, each with its tracks, their components
// and their descriptors.
[[nodiscard]] Json PackagesJson(const HeaderMetadata& header);
// What the system item of the first edit unit and the camera's private metadata tell.
[[nodiscard]] Json CameraJson(Clip& clip);

// What the clip's timecode counts in: the first timecode of the first material package or, without one, the edit rate
// of its first track.
[[nodiscard]] Timebase ClipTimebase(const HeaderMetadata& header);

#endif  // CLIPPARSER_CLIPINFO_INFODOCUMENT_H
