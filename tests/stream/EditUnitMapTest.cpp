#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "stream/BodyPartitionArray.h"
#include "tests/support/Bytes.h"

namespace {

constexpr long long kMost = std::numeric_limits<long long>::max();
constexpr long long kLeast = std::numeric_limits<long long>::min();
constexpr unsigned kLargest = std::numeric_limits<unsigned>::max();

Bytes SegmentValue(long long start, long long duration) {
  Bytes value;
  value.Item(0x3F0B, Bytes().U64(0));
  value.Item(0x3F0C, Bytes().U64(static_cast<unsigned long long>(start)));
  value.Item(0x3F0D, Bytes().U64(static_cast<unsigned long long>(duration)));
  for (const unsigned tag : {0x3F05u, 0x3F06u, 0x3F07u}) value.Item(tag, Bytes().U32(0));
  return value.Item(0x3F08, {0}).Item(0x3F0A, Batch(1, 11, Bytes().Fill(11)));
}
OxSharedPtr<IndexTableSegment> Segment(long long start, long long duration) {
  return Imported<IndexTableSegment>(kIndexSegmentKey, SegmentValue(start, duration));
}

struct Place {
  unsigned index = 0, number = 0;
  bool isFound = false;
  bool operator==(const Place& o) const { return isFound == o.isFound && index == o.index && number == o.number; }
};

// The rule that the map must not change: entry by entry, the segment whose number is the distance from the first
// segment's start divided by its duration, if that one covers the unit.
Place LinearPlace(const BodyPartitionArray& array, long long unit) {
  for (unsigned i = 0; i < array.Count(); ++i) {
    OxSharedPtr<IndexTableSegment> segment;
    long long distance = 0;
    if (!array.IndexTableSegmentAtIndex(i, 0, segment) || segment->IndexDuration() == 0 ||
        __builtin_sub_overflow(unit, segment->IndexStartPosition(), &distance) ||
        (distance == kLeast && segment->IndexDuration() == -1)) {
      continue;
    }
    const long long number = distance / segment->IndexDuration();
    if (number < 0 || number > kLargest) continue;
    const auto [start, duration] = array.EditUnitRangeAtIndex(i, static_cast<unsigned>(number));
    if (start == kMost || start > unit || duration <= 0) continue;
    if (static_cast<unsigned long long>(unit) - static_cast<unsigned long long>(start) >=
        static_cast<unsigned long long>(duration)) {
      continue;
    }
    return {i, static_cast<unsigned>(number), true};
  }
  return {};
}

Place MappedPlace(const BodyPartitionArray& array, long long unit) {
  Place place;
  place.isFound = array.GetContainIndexTableSegment(unit, place.index, place.number);
  return place;
}

class RandomArray {
 public:
  explicit RandomArray(unsigned seed) : m_random(seed) {}

  void Change() {
    const long long what = Number(0, 40);
    if (what == 0) array.Clear();
    if (what <= 2 || array.Count() == 0) array.AddBack(0);
    if (what == 3) array.AddFront(0);
    const auto index = static_cast<unsigned>(Number(0, array.Count() - 1));
    OxSharedPtr<IndexTableSegment> attached;
    if (what <= 5 && array.IndexTableSegmentAtIndex(index, 0, attached)) {
      const OxSharedPtr<IndexTableSegment> other = AnySegment();
      const Bytes value = SegmentValue(other->IndexStartPosition(), other->IndexDuration());
      attached->SetLength(value.Size());
      if (what == 3) attached->init();
      if (what == 4) *attached = *other;
      if (what == 5) static_cast<void>(attached->Import(value.Stream(), 0));
    } else {
      const unsigned number = Number(0, 30) == 0 ? kLargest : static_cast<unsigned>(Number(0, 4));
      static_cast<void>(array.SetIndexTableSegment(index, number, AnySegment()));
    }
  }

  BodyPartitionArray array;

 private:
  long long Number(long long least, long long most) { return std::uniform_int_distribution(least, most)(m_random); }
  // Mostly of the size that edit units have here.
  OxSharedPtr<IndexTableSegment> AnySegment() {
    const long long starts[] = {Number(-20, 60), Number(0, 5) * 10, kLeast, kMost - 5, kMost};
    const long long durations[] = {Number(1, 20), 10, Number(-10, 0), kMost, kLeast};
    return Segment(starts[Number(0, 3) == 0 ? Number(1, 4) : 0], durations[Number(0, 3) == 0 ? Number(1, 4) : 0]);
  }

  std::mt19937 m_random;
};

TEST(EditUnitMapTest, EveryUnitIsFoundWhereTheFirstMatchingEntryHasIt) {
  constexpr unsigned kSeed = 20261123;
  for (unsigned round = 0; round < 100; ++round) {
    RandomArray random(kSeed + round);
    for (int change = 0; change < 60; ++change) {
      random.Change();
      for (long long i = -60; i < 130; ++i) {
        const long long unit = i < -50 ? kLeast + (i + 60) : i >= 120 ? kMost - (i - 120) : i;
        ASSERT_EQ(LinearPlace(random.array, unit), MappedPlace(random.array, unit))
            << "seed " << kSeed + round << ", change " << change << ", edit unit " << unit;
      }
    }
  }
}

// That would take minutes, forwards or backwards.
TEST(EditUnitMapTest, LoadingAndFindingTwentyThousandPartitionsIsNoWalkOverAllOfThem) {
  constexpr unsigned kCount = 20000, kUnits = 3;
  for (const bool isUpwards : {true, false}) {
    BodyPartitionArray array;
    for (unsigned i = 0; i < kCount; ++i) array.AddBack(i);
    for (unsigned i = 0; i < kCount; ++i) {
      const unsigned index = isUpwards ? i : kCount - 1 - i;
      ASSERT_EQ(kStatusOK, array.SetIndexTableSegment(index, 0, Segment(index * kUnits, kUnits)));
      ASSERT_EQ((Place{index, 0, true}), MappedPlace(array, index * kUnits + 1));
    }
  }
}

}  // namespace
