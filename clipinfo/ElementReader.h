#ifndef CLIPPARSER_CLIPINFO_ELEMENTREADER_H
#define CLIPPARSER_CLIPINFO_ELEMENTREADER_H

#include <string>
#include <vector>

#include "clipinfo/Clip.h"

// Reads one element of a clip, edit unit by edit unit: the values of its packets. The packets must all be of one kind,
// that of the first one read; otherwise another element, or something else, took its place.
class ElementReader {
 public:
  ElementReader(Clip& clip, unsigned int element) : m_clip(clip), m_element(element) {}

  // The bytes of an edit unit, valid until the next call. None is an answer; throws CommandError on failure.
  const std::vector<unsigned char>& Read(unsigned int editUnit);

  [[nodiscard]] unsigned int Index() const { return m_element; }

 private:
  [[nodiscard]] Element Find(unsigned int editUnit);
  void CheckKind(unsigned int editUnit, const Element& element);
  [[nodiscard]] unsigned long long SystemItemSize(const Element& pack);
  [[nodiscard]] std::string NotFoundText(unsigned int editUnit);

  Clip& m_clip;
  unsigned int m_element;
  bool m_isKindKnown = false;
  MxfUUID m_key;  // of the first packet
  std::vector<unsigned char> m_bytes;
};

// Whether two keys name elements of one kind: all but the version, and in the last four bytes the item type, the
// element type and the number (SMPTE ST 379, generic container element keys).
[[nodiscard]] bool isSameKind(const MxfUUID& one, const MxfUUID& other);

#endif  // CLIPPARSER_CLIPINFO_ELEMENTREADER_H
