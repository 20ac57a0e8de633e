#include "clipinfo/PictureProfile.h"

#include <algorithm>

namespace {

constexpr unsigned char kForward = 0x20;
constexpr unsigned char kBackward = 0x10;
constexpr std::size_t kMostForms = 100;  // of groups that are told apart
constexpr std::size_t kLongestPattern = 120;
constexpr char kLetters[] = {'I', 'P', 'B'};

PictureKind KindOf(unsigned char flags) {
  if ((flags & kBackward) != 0) return kBidirectionalPicture;
  return (flags & kForward) != 0 ? kPredictedPicture : kIntraPicture;
}

template <class Key>
void Increment(std::map<Key, unsigned long long>& counts, const Key& key) {
  const auto found = counts.find(key);
  if (found != counts.end()) {
    ++found->second;
  } else if (counts.size() < kMostForms) {
    counts.emplace(key, 1);
  }
}

}  // namespace

void PictureProfile::Add(unsigned long long bytes, std::optional<unsigned char> flags) {
  const bool isKeyFrame = flags && KindOf(*flags) == kIntraPicture;
  AddToBucket(bytes, isKeyFrame);
  if (flags) AddToGroup(bytes, *flags);
  ++m_count;
  m_bytes += bytes;
  m_largest = std::max(m_largest, bytes);
}

void PictureProfile::AddToBucket(unsigned long long bytes, bool isKeyFrame) {
  const bool isFull = m_buckets.empty() || m_buckets.back().count == m_width;
  if (isFull && m_buckets.size() == kMostBuckets) HalveBuckets();
  if (m_buckets.empty() || m_buckets.back().count == m_width) {
    m_buckets.emplace_back();
    m_buckets.back().first = m_count;
  }
  PictureBucket& bucket = m_buckets.back();
  ++bucket.count;
  bucket.bytes += bytes;
  bucket.largest = std::max(bucket.largest, bytes);
  bucket.keyFrames += isKeyFrame ? 1 : 0;
}

void PictureProfile::HalveBuckets() {
  static_assert(kMostBuckets % 2 == 0, "each bucket has its pair");
  for (std::size_t i = 0; i < kMostBuckets / 2; ++i) {
    PictureBucket pair = m_buckets[2 * i];
    const PictureBucket& other = m_buckets[2 * i + 1];
    pair.count += other.count;
    pair.bytes += other.bytes;
    pair.largest = std::max(pair.largest, other.largest);
    pair.keyFrames += other.keyFrames;
    m_buckets[i] = pair;
  }
  m_buckets.resize(kMostBuckets / 2);
  m_width *= 2;
}

void PictureProfile::AddToGroup(unsigned long long bytes, unsigned char flags) {
  const PictureKind kind = KindOf(flags);
  ++m_totals[kind].count;
  m_totals[kind].bytes += bytes;
  if (kind == kIntraPicture) CloseGroup();
  ++m_groupLength;
  if (m_pattern.size() < kLongestPattern) m_pattern += kLetters[kind];
}

void PictureProfile::CloseGroup() {
  if (m_groupLength == 0) return;
  Increment(m_lengths, m_groupLength);
  Increment(m_patterns, m_pattern);
  m_groupLength = 0;
  m_pattern.clear();
}
