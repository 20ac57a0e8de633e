#ifndef CLIPPARSER_METADATA_STTRACK_H
#define CLIPPARSER_METADATA_STTRACK_H

#include "foundation/MxfUUID.h"
#include "foundation/OxMutableArray.h"
#include "foundation/ParseMetaData.h"
#include "klv/PrimerPack.h"
#include "metadata/STMetadataSets.h"

// One track of a package (SMPTE ST 377-1), flattened: the track set's properties, those of its sequence, and the
// structural components of the sequence, each with the essence descriptor that belongs to it (or none).
// HeaderMetadata::CreateTrack makes tracks. A track refers to the sets of the header metadata, it does not copy them.
// Threads: built by one thread; only read afterwards.
class CLIPPARSER_EXPORT STTrack : public OxObject {
 public:
  // Throws "STTrack Init Error" (const char*) when its lists cannot be made.
  STTrack();
  ~STTrack() override;

  // The track's properties as stored; 0 before SetTrack and SetSequence.
  [[nodiscard]] unsigned int TrackID() const { return m_trackID; }
  [[nodiscard]] unsigned int TrackNumber() const { return m_trackNumber; }
  [[nodiscard]] _Rational EditRate() const { return m_editRate; }  // edit units per second
  [[nodiscard]] long long Origin() const { return m_origin; }      // edit units
  [[nodiscard]] long long Duration() const { return m_duration; }  // edit units
  // What the track carries, for comparison with FBC_UL_PictureEssenceTrack and its like; empty before SetSequence.
  [[nodiscard]] OxSharedPtr<MxfUUID> DataDefinition() const { return m_dataDefinition; }
  // Pairs of component and descriptor.
  [[nodiscard]] unsigned int ComponentCount() const { return static_cast<unsigned int>(m_components->Count()); }

  // Turns labels into tags for ValueForUUID. An empty pointer is stored too.
  void SetPrimerPack(OxSharedPtr<PrimerPack> primer);
  // Take the track's properties from its track set (4801, 4804, 4B01, 4B02) and its sequence set (0201, 0202).
  //   kStatusOK          all of them are set
  //   kStatusNoInput     no set given; nothing changed
  //   kStatusUnreadable  one is missing or of another type; those before it are set, those after it are not
  unsigned int SetTrack(OxSharedPtr<STMetadataSets> track);
  unsigned int SetSequence(OxSharedPtr<STMetadataSets> sequence);
  // Appends a pair; either may be empty.
  void AddComponentAndDescriptor(OxSharedPtr<STMetadataSets> component, OxSharedPtr<STMetadataSets> descriptor);
  // Removes all pairs; the properties stay.
  void ClearComponentAndDescriptor();

  // The value on component `index` or, when that has none, on its descriptor; see STMetadataSets::ValueForTag and
  // ValueForUUID. Empty when neither has it or `index` is out of range.
  [[nodiscard]] OxSharedPtr<OxObject> ValueForTag(_LocalTag tag, unsigned int index) const;
  [[nodiscard]] OxSharedPtr<OxObject> ValueForUUID(OxSharedPtr<MxfUUID> label, unsigned int index) const;

 private:
  template <class Ask>
  OxSharedPtr<OxObject> AskPair(unsigned int index, Ask ask) const;

  // In this order, so that they are let go from the last to the first.
  OxSharedPtr<PrimerPack> m_primer;
  unsigned int m_trackID = 0;
  unsigned int m_trackNumber = 0;
  _Rational m_editRate{};
  long long m_origin = 0;
  OxSharedPtr<MxfUUID> m_dataDefinition;
  long long m_duration = 0;
  // Always of one length: entry i of the one belongs to entry i of the other.
  OxSharedPtr<OxMutableArray> m_components;
  OxSharedPtr<OxMutableArray> m_descriptors;
};

#endif  // CLIPPARSER_METADATA_STTRACK_H
