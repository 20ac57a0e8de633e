#ifndef CLIPPARSER_STREAM_EDITUNITMAP_H
#define CLIPPARSER_STREAM_EDITUNITMAP_H

#include <cstddef>
#include <deque>
#include <vector>

class IndexTableSegment;

// Which index table segment answers for an edit unit, found in a time that hardly grows with the number of segments.
// Not for hosts: it is not exported, and stands among the public headers only because BodyPartitionArray holds one.
//
// Segments may overlap; then the one of the earliest entry answers. The map keeps that true at every moment: it cuts
// the edit units into disjoint pieces, of one segment each, and a new segment takes the gaps and what belonged to later
// entries. N segments make at most 2N - 1 pieces.
//
// Segments are pointed at, not owned, and never looked into. Not synchronised.
class EditUnitMap {
 public:
  // Edit units that one segment answers for. Both ends belong to it, so that the last edit unit there is can.
  struct Piece {
    long long first;
    long long last;
    const IndexTableSegment* segment;
    unsigned int entry;   // the entry that the segment belongs to, numbered as below
    unsigned int number;  // of the segment within its entry
  };

  void Clear();
  // A new entry before all the others: they move up by one.
  void AddFrontEntry() { --m_front; }

  // Adds a segment of the entry at `index` for the edit units [first, last]. Takes a time that grows with the pieces
  // that it overlaps and with those between it and the nearer end.
  void Add(long long first, long long last, unsigned int index, unsigned int number, const IndexTableSegment* segment);

  // The piece that holds an edit unit; null when there is none.
  [[nodiscard]] const Piece* Find(long long editUnit) const;
  // The index, as of now, of the entry that a piece belongs to.
  [[nodiscard]] unsigned int IndexOf(const Piece& piece) const { return piece.entry - m_front; }

 private:
  using Pieces = std::deque<Piece>;  // grows at either end, as a clip is read forwards or backwards

  [[nodiscard]] std::vector<Piece> Overlaid(std::size_t begin, std::size_t end, const Piece& piece) const;
  [[nodiscard]] std::size_t FirstEndingFrom(long long editUnit) const;
  [[nodiscard]] std::size_t Guess(long long editUnit) const;
  [[nodiscard]] Pieces::const_iterator At(std::size_t i) const {
    return m_pieces.begin() + static_cast<std::ptrdiff_t>(i);
  }

  Pieces m_pieces;  // ascending, disjoint
  // The entry at index 0. Entries keep their numbers when others come before them; the numbers may wrap.
  unsigned int m_front = 0;
};

#endif  // CLIPPARSER_STREAM_EDITUNITMAP_H
