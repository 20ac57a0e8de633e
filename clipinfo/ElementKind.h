#ifndef CLIPPARSER_CLIPINFO_ELEMENTKIND_H
#define CLIPPARSER_CLIPINFO_ELEMENTKIND_H

#include <string>
#include <vector>

#include "clipinfo/Clip.h"

// What an element's key tells of it (SMPTE ST 379 for the item types; ST 381, 382, 436 for the element types).
struct ElementKind {
  const char* name;       // system, picture, sound, data or other
  const char* extension;  // of a file that holds nothing but the element's values
  bool isPCM;             // interleaved little-endian samples, as a wave file has them
};
[[nodiscard]] ElementKind KindOf(const Element& element);

// An element of the clip's content packages.
struct ElementPlace {
  unsigned int index = 0;   // among all elements
  unsigned int number = 0;  // among those of its kind, from 1
  ElementKind kind{};
  MxfUUID key;
  unsigned long long size = 0;  // of its value in this edit unit: 32 bits
};
// The elements of an edit unit's content package, which stand for those of all others. One that cannot be read is of
// another kind than any. Throws CommandError when there are none, or more than any clip has.
[[nodiscard]] std::vector<ElementPlace> ElementsAt(Clip& clip, unsigned int editUnit);

// picture-1.m2v; the one system item is system.bin.
[[nodiscard]] std::string FileNameOf(const ElementPlace& place, bool isWave);

// How a sound element's samples are coded.
struct SoundFormat {
  int channels = 0;
  int bits = 0;  // 16 or 24
  int samplesPerSecond = 0;

  [[nodiscard]] unsigned long long FrameSize() const {
    return static_cast<unsigned long long>(channels) * static_cast<unsigned long long>(bits / 8);
  }
};
// The format that the header gives for a sound element: the descriptor of the material package's sound track with the
// element's number or, if none has it, with its place among the sounds. Throws CommandError, with the reason, when the
// element is not PCM or the descriptor does not say enough.
[[nodiscard]] SoundFormat SoundFormatOf(Clip& clip, const ElementPlace& place);

#endif  // CLIPPARSER_CLIPINFO_ELEMENTKIND_H
