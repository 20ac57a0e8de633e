#ifndef CLIPPARSER_KLV_INDEXTABLESEGMENT_H
#define CLIPPARSER_KLV_INDEXTABLESEGMENT_H

#include <cstddef>
#include <string>
#include <vector>

#include "klv/IndexEntries.h"
#include "klv/KLVPacket.h"
#include "klv/LocalSets.h"

// Where an element lies within its edit unit.
struct _DeltaEntry {
  signed char PosTableIndex;  // below 0: the element is reordered
  unsigned char Slice;        // counted from 1; 0, or above the slice count: the element is in no slice
  unsigned int ElementDelta;  // bytes from the start of the edit unit, or of the slice
};

// One segment of an index table (SMPTE ST 377-1): temporal offset, key-frame offset, flags and place in the essence
// stream of each edit unit from IndexStartPosition on. A local set:
//
//   tag   item                type               tag   item              type
//   3F0B  IndexEditRate       rational           3F07  BodySID           unsigned 32
//   3F0C  IndexStartPosition  signed 64          3F08  SliceCount        unsigned 8
//   3F0D  IndexDuration       signed 64          3F0E  PosTableCount     unsigned 8, optional
//   3F05  EditUnitByteCount   unsigned 32        3F09  DeltaEntryArray   count (4), size 6 (4), entries
//   3F06  IndexSID            unsigned 32        3F0A  IndexEntryArray   count (4), size (4), entries
//
//   delta entry  0  1  PosTableIndex, signed     index entry   0  1  temporal offset, signed, edit units
//                1  1  Slice                                   1  1  key-frame offset, signed, edit units
//                2  4  ElementDelta                            2  1  flags
//                                                              3  8  stream offset, bytes in the essence stream
//                                                             11  4  each slice offset, from the stream offset
//
// The cameras write the slice count under 3F0E, so that item, where present, is taken as the slice count, and entries
// with position tables are refused. EditUnitByteCount is not used: a segment without entries is refused.
//
// Threads: never changes once imported, and may then be queried from any number of threads.
class CLIPPARSER_EXPORT IndexTableSegment : public KLVPacket {
 public:
  // Empty until Import; with key and offsets of a packet that was read generically, if one is given.
  IndexTableSegment();
  explicit IndexTableSegment(OxSharedPtr<KLVPacket> packet);
  ~IndexTableSegment() override;

  // Back to the empty state: zeros, no entries. The packet's key and numbers stay.
  void init();

  bool isImportable() override;
  using KLVPacket::Import;
  // Replaces what was there. After a failure the segment is empty.
  //   kStatusOK                      the segment answers for its edit units
  //   kStatusNoInput, kStatusNoCopy  as LocalSets::Import says
  //   kStatusUnreadable              the local set is malformed, an item is missing or shorter than its type, or the
  //                                  index entries are not of the size and number that the other items ask for
  unsigned int Import(OxSharedPtr<OxStream> stream, long long offset) override;
  // Steps of Import. kStatusUnreadable when there is no local set or the array is missing or malformed. A delta array
  // that is cut short keeps the entries before the cut; Import goes on with them.
  unsigned int ImportDeltaEntryArray(OxSharedPtr<LocalSets> localSets);
  unsigned int ImportIndexEntryArray(OxSharedPtr<LocalSets> localSets);

  // The items as stored; 0 in an empty segment.
  [[nodiscard]] _Rational IndexEditRate() const { return m_indexEditRate; }            // edit units per second
  [[nodiscard]] long long IndexStartPosition() const { return m_indexStartPosition; }  // edit units
  [[nodiscard]] long long IndexDuration() const { return m_indexDuration; }            // edit units
  [[nodiscard]] unsigned int IndexSID() const { return m_indexSID; }
  [[nodiscard]] unsigned int BodySID() const { return m_bodySID; }
  // Elements of an edit unit that the segment tells apart; 0: one alone.
  [[nodiscard]] unsigned int DeltaEntryCount() const { return static_cast<unsigned int>(m_deltaEntries.size()); }

  // Whether the edit unit lies in [IndexStartPosition, IndexStartPosition + IndexDuration).
  [[nodiscard]] bool isContainIndex(long long editUnit) const;

  // False, with the output untouched, when the edit unit is outside the segment or has no entry.
  [[nodiscard]] bool GetTemporalOffset(long long editUnit, signed char& offset) const;
  [[nodiscard]] bool GetKeyFrameOffset(long long editUnit, signed char& offset) const;
  [[nodiscard]] bool GetFlags(long long editUnit, unsigned char& flags) const;
  // Where an element begins, in bytes of the essence stream. `element` counts the delta entries; without delta entries
  // there is element 0 alone. False as above, and for an element that does not exist.
  [[nodiscard]] bool GetStreamOffset(long long editUnit, unsigned int element, unsigned long long& offset) const;

  // For those who remember what a segment covers: from the first call on, changes of this segment are counted.
  void Watch() { m_watch.isOn = true; }
  // How often a segment that is watched was emptied, imported or assigned to, in the whole process.
  [[nodiscard]] static unsigned long long WatchedChanges();

  // One line for each edit unit between braces: UNIT(n) = T:temporal K:key-frame F:flags O:offset of each element.
  OxSharedPtr<OxStringMac> Description() override;

 private:
  class ItemReader;

  // Whether changes of the segment are counted. Stays with the segment: a copy is not watched.
  struct ChangeWatch {
    ChangeWatch() = default;
    ChangeWatch(const ChangeWatch&) noexcept {}
    ChangeWatch& operator=(const ChangeWatch& other) noexcept;
    ~ChangeWatch() = default;
    void Note() const noexcept;

    bool isOn = false;
  };

  unsigned int ImportItems(OxSharedPtr<LocalSets> localSets);
  bool ReadNumbers(ItemReader& items);
  bool ReadDeltaEntries(ParseMetaData& reader, unsigned long long size);
  bool ReadIndexEntries(ParseMetaData& reader, unsigned long long size);
  // The number of an edit unit's entry; false when it has none.
  [[nodiscard]] bool FindEntry(long long editUnit, std::size_t& entry) const;
  [[nodiscard]] std::string UnitText(long long editUnit) const;

  // First what a look-up needs, so that it lies together: in a long clip each look-up finds another segment.
  long long m_indexStartPosition = 0;
  long long m_indexDuration = 0;
  std::vector<_DeltaEntry> m_deltaEntries;
  IndexEntries m_indexEntries;
  unsigned char m_sliceCount = 0;
  unsigned char m_posTableCount = 0;
  ChangeWatch m_watch;
  unsigned int m_editUnitByteCount = 0;
  unsigned int m_indexSID = 0;
  unsigned int m_bodySID = 0;
  _Rational m_indexEditRate{};
};

#endif  // CLIPPARSER_KLV_INDEXTABLESEGMENT_H
