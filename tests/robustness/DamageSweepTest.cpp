#include <ctime>

#include "tests/support/Allocations.h"
#include "tests/support/AskEverything.h"
#include "tests/support/MemoryFile.h"
#include "tests/support/TestClip.h"

// A small clip of each index layout, cut at every byte outside its essence, and with each of its lengths, counts,
// offsets and links replaced. Whatever the damage, every query answers within time and memory; and an answer that the
// damage cannot reach stays as it was.

namespace {

using clipwriter::Clip;
using clipwriter::Field;
using clipwriter::FieldKind;
using clipwriter::Partition;

// Short in every respect, since each byte of it costs some runs.
ClipOptions TinyClip(bool isIndexInHeader) {
  ClipOptions options = isIndexInHeader ? HeaderIndexClip() : SmallClip();
  options.partitionUnits = {3, 3, 2};
  if (isIndexInHeader) options.partitionUnits = {8};
  options.segmentUnits = isIndexInHeader ? 2 : 0;
  options.kagSize = 256;
  options.intraBytes = 90, options.predictedBytes = 50, options.bidirectionalBytes = 30;
  options.soundElements = 1, options.soundBytes = 40, options.dataBytes = 20;
  return options;
}

// What is asked, by what can change it: the header metadata, the index and essence of edit unit 0 for camera
// information, the packs and indexes, and one edit unit each.
enum Group : unsigned { kHeader, kCamera, kPartitions, kOutside, kFirstUnit };
using Numbers = std::vector<unsigned long long>;
using Answers = std::vector<Numbers>;  // by group

constexpr AskLimits kLimits = {16, 5, 4, 4096};
constexpr double kMostSeconds = 1;
constexpr unsigned long long kMostBytes = 64 << 20;

// Which groups a change of the file can reach.
struct Reach {
  bool isHeaderReached = false, arePartitionsReached = false;
  unsigned long long firstUnit = 0, units = 0;

  bool Includes(unsigned group) const {
    if (group == kHeader) return isHeaderReached;
    if (group == kPartitions) return arePartitionsReached;
    if (group == kOutside) return isHeaderReached && arePartitionsReached;
    if (group == kCamera) return isHeaderReached || Includes(kFirstUnit);
    return group - kFirstUnit >= firstUnit && group - kFirstUnit - firstUnit < units;
  }
};

class DamageSweepTest : public testing::TestWithParam<bool> {
 protected:
  DamageSweepTest()
      : m_truth(clipwriter::WriteClip(TinyClip(GetParam()), m_sink)),
        m_file(m_sink.bytes),
        m_everything{true, true, 0, m_truth.units} {
    FBCMemoryCacheManager::GetInstance();  // the pool's 40 MiB are taken once
    m_right = Ask();
    m_headerEnd = m_truth.partitions[0].headerOffset + m_truth.partitions[0].headerBytes;
  }

  Answers Ask() const {
    Answers answers(kFirstUnit + m_truth.units);
    MXFStream clip(CreateOxString(m_file.Path()));
    unsigned group = kHeader;
    const auto answer = [&](const About& about, unsigned long long number) {
      const bool isOfHeader =
          about.query == std::string("Duration") || about.query == std::string("GetEssenceDescriptor");
      const bool isUnit = group == kFirstUnit && !isOfHeader;
      const bool isInside = isUnit && about.first < m_truth.units;
      answers[isInside ? kFirstUnit + about.first : isUnit ? +kOutside : group % kFirstUnit].push_back(number);
    };
    Asker asker(clip, answer, kLimits);
    answers[kHeader].push_back(clip.Parse());
    group = kFirstUnit, asker.Units();
    group = kCamera, asker.Camera();
    group = kHeader, AskHeader(*clip.GetHeaderMetadata(), answer, kLimits);
    group = kPartitions, asker.Partitions();
    return answers;
  }

  // Asks the damaged clip; reports what it should not have done.
  Answers AskWithinLimits() const {
    const AllocationPeak peak;
    const double start = ThreadSeconds();
    Answers answers = Ask();
    EXPECT_LT(ThreadSeconds() - start, kMostSeconds);
    EXPECT_LT(peak.Bytes(), kMostBytes);
    return answers;
  }

  void ExpectUnchanged(const Answers& answers, const Reach& reach) const {
    for (unsigned group = 0; group < answers.size(); ++group) {
      EXPECT_TRUE(reach.Includes(group) || answers[group] == m_right[group]) << "group " << group;
    }
  }
  // For a cut, which leaves no wrong numbers in the file.
  void ExpectRightOrNone(const Answers& answers) const {
    for (unsigned group = kFirstUnit; group < answers.size(); ++group) {
      for (unsigned i = 0; i < answers[group].size(); ++i) {
        const unsigned long long number = answers[group][i];
        const bool isNone =
            number == kNoAnswer || number == 0x7FFFFFFFFFFFFFFF || number == 0 || number == DigestOf(nullptr, 0);
        EXPECT_TRUE(isNone || number == m_right[group].at(i)) << "group " << group << ", answer " << i;
      }
    }
  }

  Reach ReachOf(const Field& field, std::uint64_t itemValue) const;
  Reach ReachInHeaderMetadata(const Field& field) const;
  Reach ReachInIndex(const Field& field, std::uint64_t itemValue, std::uint64_t first, std::uint64_t units) const;

  static double ThreadSeconds() {
    timespec time = {};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
  }

  clipwriter::MemorySink m_sink;
  const Clip m_truth;
  const MemoryFile m_file;
  const Reach m_everything;
  Answers m_right;
  std::uint64_t m_headerEnd = 0;
};

bool isItemLength(const Field& field) { return field.kind == FieldKind::Length && field.width == 2; }

// The duration is found from the preface over the storage, the material package and its first track to a sequence.
// Values of the other sets are read for the header's own answers only; but whatever says how long something is can end
// the walk over all sets.
Reach DamageSweepTest::ReachInHeaderMetadata(const Field& field) const {
  static const std::set<std::string> kOffTheWay = {
      "EssenceContainerData",   "SourceClip",       "Descriptor", "SubDescriptor",
      "StreamFileSequenceInfo", "TimecodeComponent"};
  const bool isValue = field.tag != 0 && !isItemLength(field);
  return isValue && kOffTheWay.count(field.name) > 0 ? Reach{true} : m_everything;
}

// A segment answers for its own units, unless a length or its place among the units is damaged. The first two segments
// of a header index also tell where the others are.
Reach DamageSweepTest::ReachInIndex(const Field& field, std::uint64_t itemValue, std::uint64_t first,
                                    std::uint64_t units) const {
  const bool isPlace = field.tag == 0x3F0C || field.tag == 0x3F0D;
  if (field.tag == 0 || isItemLength(field) || isPlace) return {false, true, 0, m_truth.units};
  const std::uint64_t entries = itemValue + 4 + 4, entrySize = 3 + 8 + 4u * m_truth.options.slices;
  if (field.tag == 0x3F0A && field.offset >= entries)
    return {false, true, first + (field.offset - entries) / entrySize, 1};
  const bool isFirstInHeader = GetParam() && first < 4;
  return isFirstInHeader ? Reach{false, true, 0, m_truth.units} : Reach{false, true, first, units};
}

Reach DamageSweepTest::ReachOf(const Field& field, std::uint64_t itemValue) const {
  if (field.offset >= m_truth.randomIndexOffset) return m_everything;
  std::size_t number = m_truth.partitions.size();
  while (m_truth.partitions[--number].offset > field.offset) {
  }
  const Partition& partition = m_truth.partitions[number];
  if (field.offset < partition.headerOffset) {
    if (number == 0) return m_everything;
    // What leads to the index can lead to that of other units, which then passes for the partition's own.
    const bool isThisPartition = field.offset == partition.offset + kThisPartition;
    if (field.kind == FieldKind::Length || isThisPartition) return {false, true, 0, m_truth.units};
    const Partition& before = m_truth.partitions[number - 1];  // whose index lies here
    return {false, true, before.firstUnit, before.units + partition.units};
  }
  if (field.offset < partition.indexOffset) return ReachInHeaderMetadata(field);
  if (field.offset < partition.essenceOffset) {
    const Partition& indexed = m_truth.partitions[number == 0 ? 1 : number - 1];
    if (number > 0) return ReachInIndex(field, itemValue, indexed.firstUnit, indexed.units);
    const std::uint64_t segmentSize = m_truth.partitions[0].indexBytes / 4;  // roughly: the fill is short
    return ReachInIndex(field, itemValue, (field.offset - partition.indexOffset) / segmentSize * 2, 2);
  }
  std::uint64_t unit = partition.firstUnit;
  while (unit + 1 < partition.firstUnit + partition.units && m_truth.ElementAt(unit + 1, 0).offset <= field.offset)
    ++unit;
  return {false, false, unit, 1};
}

// The field's bytes with the number in its last eight, at most, and `fill` before.
Bytes FieldValue(unsigned width, std::uint64_t number, unsigned char fill) {
  Bytes bytes(width, fill);
  for (unsigned i = 0; i < std::min(width, 8u); ++i)
    bytes[width - 1 - i] = static_cast<unsigned char>(number >> (8 * i));
  return bytes;
}

std::set<Bytes> Replacements(const Bytes& own, const Clip& clip) {
  const auto width = static_cast<unsigned>(own.size());
  std::uint64_t number = 0;
  for (unsigned i = width - std::min(width, 8u); i < width; ++i) number = number << 8 | own[i];
  Bytes large = FieldValue(width, ~0ull, 0xFF);
  std::set<Bytes> values = {FieldValue(width, 0, 0), FieldValue(width, 1, 0), large,
                            FieldValue(width, clip.partitions[1].offset, 0),
                            FieldValue(width, clip.partitions.back().offset, 0)};
  large[0] = 0x7F;
  values.insert(large);
  for (const std::uint64_t near : {number - 1, number + 1}) {
    const Bytes tail = FieldValue(std::min(width, 8u), near, 0);
    Bytes value = own;
    std::copy(tail.begin(), tail.end(), value.end() - static_cast<std::ptrdiff_t>(tail.size()));
    values.insert(value);
  }
  values.erase(own);
  return values;
}

TEST_P(DamageSweepTest, AReplacedNumberChangesOnlyWhatItCanReach) {
  std::uint64_t itemValue = 0;
  for (const Field& field : m_truth.fields) {
    if (isItemLength(field)) itemValue = field.offset + field.width;
    if (field.kind == FieldKind::Tag) continue;
    const auto place = m_sink.bytes.begin() + static_cast<std::ptrdiff_t>(field.offset);
    const Bytes own(place, place + field.width);
    const Reach reach = ReachOf(field, itemValue);
    for (const Bytes& value : Replacements(own, m_truth)) {
      m_file.Write(field.offset, value.data(), value.size());
      ExpectUnchanged(AskWithinLimits(), reach);
      ASSERT_FALSE(HasFailure()) << field.name << ", item " << std::hex << field.tag << ", field of " << field.width
                                 << " bytes at " << field.offset << ": " << testing::PrintToString(value);
    }
    m_file.Write(field.offset, own.data(), own.size());
  }
}

TEST_P(DamageSweepTest, ACutLeavesRightAnswersOrNone) {
  std::vector<std::pair<std::uint64_t, std::uint64_t>> areas = {{m_truth.randomIndexOffset, m_truth.length}};
  for (const Partition& partition : m_truth.partitions) areas.emplace_back(partition.offset, partition.essenceOffset);
  std::sort(areas.rbegin(), areas.rend());
  for (const auto& [begin, end] : areas) {
    for (std::uint64_t size = end; size-- > begin;) {
      m_file.Resize(size);
      const Answers answers = AskWithinLimits();
      ExpectRightOrNone(answers);
      EXPECT_TRUE(size >= m_headerEnd ? answers[kHeader] == m_right[kHeader] : answers[kHeader][0] != kStatusOK);
      ASSERT_FALSE(HasFailure()) << "cut at " << size;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Index, DamageSweepTest, testing::Bool(),
                         [](const auto& test) { return test.param ? "InHeader" : "PerPartition"; });

}  // namespace
