#ifndef CLIPPARSER_CLIPINFO_METADATATREE_H
#define CLIPPARSER_CLIPINFO_METADATATREE_H

#include <set>

#include "clipinfo/Clip.h"
#include "clipinfo/Json.h"

// The header metadata of a clip as a tree of documents (SMPTE ST 377-1), from the preface along its strong references;
// docs/json.md describes them. In a hostile file references lead in circles or name the same sets over and over: each
// set is told where it is met first, so deep and so many as no camera writes.
class MetadataTree {
 public:
  explicit MetadataTree(Clip& clip);

  // Throws CommandError when there is no preface.
  [[nodiscard]] Json Preface();

 private:
  [[nodiscard]] Json SetJson(STMetadataSets& set, unsigned int depth);
  [[nodiscard]] Json ItemJson(STMetadataSets& set, _LocalTag tag, unsigned int depth);
  void AddSets(Json& item, const OxSharedPtr<OxObject>& references, unsigned int depth);
  [[nodiscard]] Json ReferenceJson(const OxSharedPtr<MxfUUID>& reference, unsigned int depth);

  OxSharedPtr<HeaderMetadata> m_header;
  OxSharedPtr<PrimerPack> m_primer;  // what the tags stand for that the file assigns; may be empty
  std::set<const STMetadataSets*> m_told;
  unsigned int m_referencesLeft;
};

#endif  // CLIPPARSER_CLIPINFO_METADATATREE_H
