#ifndef CLIPPARSER_METADATA_HEADERMETADATA_H
#define CLIPPARSER_METADATA_HEADERMETADATA_H

#include <map>
#include <vector>

#include "foundation/MxfUUID.h"
#include "foundation/OxMutableArray.h"
#include "foundation/UMID.h"
#include "klv/LocalSets.h"
#include "klv/PrimerPack.h"
#include "metadata/STMetadataSets.h"
#include "metadata/STTrack.h"

// The header metadata of a clip (SMPTE ST 377-1): every structural set by its instance identifier, and what follows
// from the references between them.
//
//   Preface -> Identifications
//           -> Content Storage -> Packages -> Tracks -> Sequence -> components
//                              -> Essence Container Data
//   a component that is a source clip -> source package -> descriptor, or the one of a multiple descriptor that is
//                                        linked to the source track
//
// Lookups give an empty pointer, and counts 0, when something is not there; a reference that names no set, or a value
// of another type, counts as not there. The sets that are handed out belong to the header metadata as well.
//
// Threads: filled by the thread that opens the clip; afterwards it is only read and may be asked from any thread.
class CLIPPARSER_EXPORT HeaderMetadata : public OxObject {
 public:
  // Throws "HeaderMetadata init error" (const char*) when its lists cannot be made.
  HeaderMetadata();
  ~HeaderMetadata() override;

  // An empty pointer is ignored.
  void SetPrimerPack(OxSharedPtr<PrimerPack> primer);
  // Stores a structural set by its Instance UID (3C0A); the first one with a UID stays. The last preface becomes the
  // preface.
  //   kStatusNoInput     no set given
  //   kStatusUnreadable  always otherwise, also when the set was stored: callers do not take it as a failure
  unsigned int AddMetadata(OxSharedPtr<STMetadataSets> set);
  // The set with this Instance UID.
  [[nodiscard]] OxSharedPtr<STMetadataSets> MetadataForKey(OxSharedPtr<MxfUUID> key) const;

  // Fill the lists below from the preface, in the order of its references; may be repeated. Without a preface the
  // lists are empty and the status is kStatusOK. Analyze runs the other two and returns the first failure.
  //   kStatusUnreadable  the preface has no Identifications (3B06), or no Content Storage reference (3B03)
  unsigned int Analyze();
  unsigned int SetIdentification();
  unsigned int SetContentStorage();

  // A value of the preface.
  [[nodiscard]] OxSharedPtr<OxObject> PrefaceInfoForTag(_LocalTag tag) const;
  // The list itself, of STMetadataSets.
  [[nodiscard]] OxSharedPtr<OxArray> Identifications() const;
  // How many there are, and a value of one of them.
  [[nodiscard]] unsigned int IdentificationCount() const;
  [[nodiscard]] OxSharedPtr<OxObject> IdentificationInfoForTag(_LocalTag tag, unsigned int index) const;
  // The same for the sets of essence container data.
  [[nodiscard]] unsigned int EssenceContainerDataCount() const;
  [[nodiscard]] OxSharedPtr<OxObject> EssenceContainerDataForTag(_LocalTag tag, unsigned int index) const;

  // Material packages in the content storage.
  [[nodiscard]] unsigned int MaterialPackageCount() const;
  // The Package UID of the first material package.
  [[nodiscard]] OxSharedPtr<UMID> MaterialPackageUMID() const;
  // How many tracks a material package lists.
  [[nodiscard]] unsigned int TrackCount(unsigned int package) const;
  // A new track of a material package. Note the order: the track's index comes first.
  [[nodiscard]] OxSharedPtr<STTrack> TrackForIndex(unsigned int track, unsigned int package) const;
  // A new track from the Instance UID of its track set. Empty when the track set, its sequence, the sequence's list of
  // components or the primer pack is missing, or one of the track's properties.
  [[nodiscard]] OxSharedPtr<STTrack> CreateTrack(OxSharedPtr<MxfUUID> trackUID) const;

  // The first source package with this Package UID.
  [[nodiscard]] OxSharedPtr<STMetadataSets> SourcePackageForUMID(OxSharedPtr<UMID> umid) const;
  // The descriptor that a source clip points at, or that a source package links to a track: its descriptor or, for a
  // multiple descriptor, the first of its sub-descriptors that isMatchDescriptor.
  [[nodiscard]] OxSharedPtr<STMetadataSets> GetDescriptor(OxSharedPtr<STMetadataSets> component) const;
  [[nodiscard]] OxSharedPtr<STMetadataSets> GetDescriptor(OxSharedPtr<UMID> sourcePackage, unsigned int trackID) const;
  // Whether the descriptor's Linked Track ID (3006) is `trackID`; false when it has none.
  [[nodiscard]] static bool isMatchDescriptor(OxSharedPtr<STMetadataSets> descriptor, unsigned int trackID);

 private:
  class DescriptorResolver;

  // The sets that a list of references names, without those that name none.
  [[nodiscard]] std::vector<OxSharedPtr<STMetadataSets>> SetsOf(const OxSharedPtr<OxArray>& references) const;
  [[nodiscard]] OxSharedPtr<STMetadataSets> MaterialPackage(unsigned int index) const;
  void AddSourcePackage(const OxSharedPtr<STMetadataSets>& package);

  std::map<MxfUUID, OxSharedPtr<LocalSets>> m_sets;
  OxSharedPtr<STMetadataSets> m_preface;
  OxSharedPtr<PrimerPack> m_primer;
  OxSharedPtr<OxMutableArray> m_identifications;
  OxSharedPtr<OxMutableArray> m_materialPackages;
  std::map<UMID, OxSharedPtr<STMetadataSets>> m_sourcePackages;  // the first of each Package UID, in list order
  OxSharedPtr<OxMutableArray> m_essenceContainerData;
};

#endif  // CLIPPARSER_METADATA_HEADERMETADATA_H
