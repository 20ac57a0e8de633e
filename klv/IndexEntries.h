#ifndef CLIPPARSER_KLV_INDEXENTRIES_H
#define CLIPPARSER_KLV_INDEXENTRIES_H

#include <cstddef>
#include <vector>

// The index entries of one segment (SMPTE ST 377-1), kept in as few bytes as their numbers need: the index of a long
// clip is most of what the library holds in memory. Not for hosts: it is not exported, and stands among the public
// headers only because IndexTableSegment holds one.
//
//   as stored, big-endian                    as kept, big-endian
//    0  1  temporal offset, signed            0  1  temporal offset
//    1  1  key-frame offset, signed           1  1  key-frame offset
//    2  1  flags                              2  1  flags
//    3  8  stream offset                      3  m  stream offset less the segment's smallest
//   11  4  each slice offset                3+m  n  each slice offset
//
// Here m and n are the bytes that the largest of the segment's numbers takes; a dozen frames need 3 and 3.
// Threads: never changes between Assign and Clear, and may then be asked from any number of threads.
class IndexEntries {
 public:
  static constexpr std::size_t kStoredHeadSize = 1 + 1 + 1 + 8;
  static constexpr std::size_t kStoredSliceSize = 4;

  // Takes `count` entries, with as many slice offsets each, as stored. After std::bad_alloc there are no entries.
  void Assign(const unsigned char* stored, std::size_t count, std::size_t sliceCount);
  void Clear() { *this = {}; }

  [[nodiscard]] std::size_t Count() const { return m_count; }

  // Of an entry below Count(). Slices count from 0 and must be below the slice count.
  [[nodiscard]] signed char TemporalOffset(std::size_t i) const { return static_cast<signed char>(Entry(i)[0]); }
  [[nodiscard]] signed char KeyFrameOffset(std::size_t i) const { return static_cast<signed char>(Entry(i)[1]); }
  [[nodiscard]] unsigned char Flags(std::size_t i) const { return Entry(i)[2]; }
  [[nodiscard]] unsigned long long StreamOffset(std::size_t i) const;
  [[nodiscard]] unsigned int SliceOffset(std::size_t i, std::size_t slice) const;

 private:
  static constexpr std::size_t kSmallSize = 1 + 1 + 1;  // of the offsets and flags in one byte each

  void Measure(const unsigned char* stored, std::size_t count, std::size_t sliceCount);
  [[nodiscard]] const unsigned char* Entry(std::size_t i) const { return m_bytes.data() + i * m_entrySize; }

  std::size_t m_count = 0;
  unsigned long long m_smallestStreamOffset = 0;
  unsigned short m_entrySize = 0;
  unsigned char m_streamOffsetSize = 0;
  unsigned char m_sliceOffsetSize = 0;
  std::vector<unsigned char> m_bytes;
};

#endif  // CLIPPARSER_KLV_INDEXENTRIES_H
