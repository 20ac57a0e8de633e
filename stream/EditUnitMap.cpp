#include "stream/EditUnitMap.h"

#include <algorithm>

void EditUnitMap::Clear() {
  m_pieces.clear();
  m_front = 0;
}

void EditUnitMap::Add(long long first, long long last, unsigned int index, unsigned int number,
                      const IndexTableSegment* segment) {
  const std::size_t begin = FirstEndingFrom(first);
  std::size_t end = begin;
  while (end < m_pieces.size() && m_pieces[end].first <= last) ++end;
  const std::vector<Piece> pieces = Overlaid(begin, end, {first, last, segment, m_front + index, number});
  const auto at = m_pieces.erase(At(begin), At(end));
  m_pieces.insert(at, pieces.begin(), pieces.end());
}

// The pieces [begin, end), all of which overlap the new one, and the new one where it answers.
std::vector<EditUnitMap::Piece> EditUnitMap::Overlaid(std::size_t begin, std::size_t end, const Piece& piece) const {
  std::vector<Piece> pieces;
  const auto add = [&pieces](Piece part, long long first, long long last) {
    part.first = first;
    part.last = last;
    pieces.push_back(part);
  };
  long long next = piece.first;  // where the new piece goes on
  bool isOpen = true;            // whether it does
  const Piece* behind = nullptr;
  for (std::size_t i = begin; i < end; ++i) {
    const Piece& old = m_pieces[i];
    if (IndexOf(old) > IndexOf(piece)) {
      if (old.first < piece.first) add(old, old.first, piece.first - 1);
      if (old.last > piece.last) behind = &old;
    } else {
      if (next < old.first) add(piece, next, old.first - 1);
      pieces.push_back(old);
      isOpen = old.last < piece.last;
      if (isOpen) next = old.last + 1;
    }
  }
  if (isOpen) add(piece, next, piece.last);
  if (behind != nullptr) add(*behind, piece.last + 1, behind->last);
  return pieces;
}

const EditUnitMap::Piece* EditUnitMap::Find(long long editUnit) const {
  if (m_pieces.empty()) return nullptr;
  const Piece& guess = m_pieces[Guess(editUnit)];
  if (guess.first <= editUnit && editUnit <= guess.last) return &guess;
  const std::size_t found = FirstEndingFrom(editUnit);
  return found < m_pieces.size() && m_pieces[found].first <= editUnit ? &m_pieces[found] : nullptr;
}

// The number of pieces that end before an edit unit: looked for from the guess outwards, in steps that double.
std::size_t EditUnitMap::FirstEndingFrom(long long editUnit) const {
  const auto endsBefore = [editUnit](const Piece& piece) { return piece.last < editUnit; };
  const std::size_t size = m_pieces.size();
  std::size_t begin = size > 0 ? Guess(editUnit) : 0;
  std::size_t end = begin;
  for (std::size_t step = 1; begin > 0 && !endsBefore(m_pieces[begin - 1]); step *= 2) begin -= std::min(step, begin);
  for (std::size_t step = 1; end < size && endsBefore(m_pieces[end]); step *= 2) end += std::min(step, size - end);
  return static_cast<std::size_t>(std::partition_point(At(begin), At(end), endsBefore) - m_pieces.begin());
}

// Which piece an edit unit is in if all are of one length, as segments mostly are. There must be a piece.
std::size_t EditUnitMap::Guess(long long editUnit) const {
  const long long first = m_pieces.front().first;
  const long long last = m_pieces.back().last;
  if (editUnit <= first) return 0;
  if (editUnit >= last) return m_pieces.size() - 1;
  // In floating point, which cannot overflow; that it is not exact only makes a worse guess.
  const double distance = static_cast<double>(editUnit) - static_cast<double>(first);
  const double whole = static_cast<double>(last) - static_cast<double>(first) + 1;
  const auto guess = static_cast<std::size_t>(distance * static_cast<double>(m_pieces.size()) / whole);
  return std::min(guess, m_pieces.size() - 1);
}
