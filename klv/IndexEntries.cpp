#include "klv/IndexEntries.h"

#include <algorithm>

#include "foundation/BigEndian.h"

namespace {

constexpr std::size_t kStoredStreamOffset = 1 + 1 + 1;

unsigned long long StoredStreamOffset(const unsigned char* entry) {
  return LoadBigEndian<unsigned long long>(entry + kStoredStreamOffset);
}

unsigned int StoredSliceOffset(const unsigned char* entry, std::size_t slice) {
  return LoadBigEndian<unsigned int>(entry + IndexEntries::kStoredHeadSize + slice * IndexEntries::kStoredSliceSize);
}

// How many bytes a number takes: none for 0.
unsigned char ByteCount(unsigned long long number) {
  unsigned char count = 0;
  for (; number != 0; number >>= 8) ++count;
  return count;
}

// Writes the last `size` bytes of a number and returns the place behind them.
unsigned char* Store(unsigned char* place, unsigned long long number, std::size_t size) {
  for (std::size_t i = size; i-- > 0; number >>= 8) place[i] = static_cast<unsigned char>(number);
  return place + size;
}

}  // namespace

void IndexEntries::Assign(const unsigned char* stored, std::size_t count, std::size_t sliceCount) {
  Clear();
  Measure(stored, count, sliceCount);
  m_bytes.resize(count * m_entrySize);
  unsigned char* place = m_bytes.data();
  const unsigned char* entry = stored;
  for (std::size_t i = 0; i < count; ++i) {
    place = std::copy_n(entry, kSmallSize, place);
    place = Store(place, StoredStreamOffset(entry) - m_smallestStreamOffset, m_streamOffsetSize);
    for (std::size_t slice = 0; slice < sliceCount; ++slice) {
      place = Store(place, StoredSliceOffset(entry, slice), m_sliceOffsetSize);
    }
    entry += kStoredHeadSize + sliceCount * kStoredSliceSize;
  }
  m_count = count;
}

// Finds the smallest stream offset and the sizes that the numbers take.
void IndexEntries::Measure(const unsigned char* stored, std::size_t count, std::size_t sliceCount) {
  unsigned long long smallest = count > 0 ? ~0ULL : 0;
  unsigned long long largest = 0;
  unsigned int largestSlice = 0;
  const unsigned char* entry = stored;
  for (std::size_t i = 0; i < count; ++i) {
    smallest = std::min(smallest, StoredStreamOffset(entry));
    largest = std::max(largest, StoredStreamOffset(entry));
    for (std::size_t slice = 0; slice < sliceCount; ++slice) {
      largestSlice = std::max(largestSlice, StoredSliceOffset(entry, slice));
    }
    entry += kStoredHeadSize + sliceCount * kStoredSliceSize;
  }
  m_smallestStreamOffset = smallest;
  m_streamOffsetSize = ByteCount(largest - smallest);
  m_sliceOffsetSize = ByteCount(largestSlice);
  m_entrySize = static_cast<unsigned short>(kSmallSize + m_streamOffsetSize + sliceCount * m_sliceOffsetSize);
}

unsigned long long IndexEntries::StreamOffset(std::size_t i) const {
  return m_smallestStreamOffset + LoadBigEndian<unsigned long long>(Entry(i) + kSmallSize, m_streamOffsetSize);
}

unsigned int IndexEntries::SliceOffset(std::size_t i, std::size_t slice) const {
  return LoadBigEndian<unsigned int>(Entry(i) + kSmallSize + m_streamOffsetSize + slice * m_sliceOffsetSize,
                                     m_sliceOffsetSize);
}
