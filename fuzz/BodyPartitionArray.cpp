#include "stream/BodyPartitionArray.h"

#include <limits>
#include <optional>

#include "fuzz/Fuzz.h"
#include "tests/support/Bytes.h"

namespace {

__extension__ typedef __int128 Wide;

// What is known of a partition and its segments, searched from the front in the plainest way.
struct Segment {
  long long start, duration;
  unsigned int entries;
  unsigned long long streamOffset;  // of the first entry; each one's offsets and flags tell its number
  OxSharedPtr<IndexTableSegment> object = {};

  void Import() {
    Bytes value, list;
    for (unsigned int i = 0; i < entries; ++i) list.U8(i).U8(i + 1).U8(i + 2).U64(streamOffset + i);
    value.Item(0x3F0B, Bytes().U32(25).U32(1)).Item(0x3F0C, Bytes().U64(static_cast<unsigned long long>(start)));
    value.Item(0x3F0D, Bytes().U64(static_cast<unsigned long long>(duration))).Item(0x3F08, {0});
    for (const unsigned int tag : {0x3F05u, 0x3F06u, 0x3F07u}) value.Item(tag, Bytes().U32(1));
    value.Item(0x3F0A, Batch(entries, 11, list));
    if (!object) object = PacketFor<IndexTableSegment>(kIndexSegmentKey, 0);
    object->SetLength(value.Size());
    MUST(object->Import(value.Stream(), 0) == kStatusOK);
  }
};
struct Partition {
  unsigned long long fileOffset = 0, toFile = 0;  // what turns a place in the essence stream into one in the file
  bool hasData = false;
  std::map<unsigned int, Segment> segments = {};
};
struct Found {
  unsigned int index, number;
};

std::optional<Found> Find(const std::deque<Partition>& partitions, long long unit) {
  for (unsigned int i = 0; i < partitions.size(); ++i) {
    const auto& segments = partitions[i].segments;
    if (segments.count(0) == 0 || segments.at(0).duration == 0) continue;
    const Wide distance = Wide(unit) - segments.at(0).start;
    const bool isWord = distance == static_cast<long long>(distance);
    const Wide number = distance / segments.at(0).duration;
    if (!isWord || number < 0 || number > 0xFFFFFFFF) continue;
    const auto segment = segments.find(static_cast<unsigned int>(number));
    if (segment == segments.end() || segment->second.start == BodyPartitionArray::kNoEditUnit) continue;
    if (unit < segment->second.start || Wide(segment->second.start) + segment->second.duration <= unit) continue;
    return Found{i, segment->first};
  }
  return {};
}

void Compare(const BodyPartitionArray& array, const std::deque<Partition>& partitions, long long unit) {
  const std::optional<Found> found = Find(partitions, unit);
  unsigned int index = 0, number = 0;
  MUST(array.GetContainIndexTableSegment(unit, index, number) == found.has_value());
  MUST(!found || (index == found->index && number == found->number));
  const Partition* partition = found && partitions[index].hasData ? &partitions[index] : nullptr;
  const Segment* segment = partition != nullptr ? &partition->segments.at(number) : nullptr;
  const Wide entry = segment != nullptr ? Wide(unit) - segment->start : 0;
  const bool isThere = segment != nullptr && entry < segment->entries;
  signed char temporal = 0, key = 0;
  unsigned char flags = 0;
  unsigned long long offset = 0;
  MUST(array.GetTemporalOffset(unit, temporal) == isThere && array.GetKeyFrameOffset(unit, key) == isThere);
  MUST(array.GetFlags(unit, flags) == isThere && array.GetStreamOffset(unit, 0, offset) == isThere);
  MUST(!array.GetStreamOffset(unit, 1, offset));
  if (!isThere) return;
  MUST(temporal == entry && key == entry + 1 && flags == entry + 2);
  MUST(offset == partition->toFile + segment->streamOffset + static_cast<unsigned long long>(entry));
}

OxSharedPtr<PartitionPack> Pack(unsigned long long offset, unsigned long long kag, unsigned long long bodyOffset) {
  const Bytes head = Bytes().U16(1).U16(2).U32(kag).U64(offset).U64(0).U64(0).U64(0).U64(0).U32(1);
  return Imported<PartitionPack>(kHeaderPackKey, Bytes(head).U64(bodyOffset).U32(2).Raw(Label(1, 2)).Raw(Batch(0, 16)));
}

OxSharedPtr<RandomIndexPack> List(Script& script, std::deque<Partition>& partitions) {
  Bytes value;
  partitions.clear();
  for (unsigned int count = script.Byte() % 8; count > 0; --count) {
    const unsigned int sid = script.Byte() % 4;
    const auto offset = static_cast<unsigned long long>(script.Number());
    value.U32(sid).U64(offset);
    if (sid == kEssenceBodySID) partitions.push_back({offset});
  }
  return Imported<RandomIndexPack>(kRandomIndexPackKey, value.U32(0));
}

}  // namespace

// A script of calls. After each, the units at the edges of the segments are asked.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Script script(data, std::min<std::size_t>(size, 256));
  BodyPartitionArray array;
  std::deque<Partition> partitions;
  while (!script.isOver()) {
    const unsigned int step = script.Byte() % 16, index = script.Byte() % 8;
    const auto number = static_cast<unsigned long long>(script.Number());
    const bool isThere = index < partitions.size();
    if (step == 0) array.Clear(), partitions.clear();
    if (step == 1) array.AddFront(number), partitions.push_front({number});
    if (step == 2) array.AddBack(number), partitions.push_back({number});
    if (step == 3) array.SetFromRandomIndexPack(List(script, partitions));
    if (step >= 4 && step < 8) {
      const unsigned int kag = script.Byte();
      const bool isTaken = isThere && partitions[index].fileOffset == number;
      const auto bodyOffset = static_cast<unsigned long long>(script.Number());
      MUST(array.SetBodyPartitionData(index, Pack(number, kag, bodyOffset)) == (isTaken ? kStatusOK : kStatusRefused));
      if (isTaken) partitions[index].toFile = number + kag - bodyOffset, partitions[index].hasData = true;
    }
    if (step >= 8) {
      const auto place = static_cast<unsigned int>(number);
      Segment segment = {script.Number(), script.Number(), script.Byte() % 4 + 1,
                         static_cast<unsigned long long>(script.Number())};
      const bool isFree = isThere && partitions[index].segments.count(place) == 0;
      // One that is attached may be imported anew.
      if (isThere && !isFree && step >= 14) segment.object = partitions[index].segments[place].object;
      segment.Import();
      if (isFree || (isThere && step >= 14)) partitions[index].segments[place] = segment;
      MUST(array.SetIndexTableSegment(index, place, segment.object) == (isFree ? kStatusOK : kStatusRefused));
      for (const Wide unit : {Wide(segment.start), Wide(segment.start) + segment.duration}) {
        for (const int near : {-1, 0, 1, 2}) Compare(array, partitions, static_cast<long long>(unit + near));
      }
    }
    MUST(array.Count() == partitions.size() && array.SetBodyPartitionData(index, {}) == kStatusRefused);
    Compare(array, partitions, static_cast<long long>(number));
  }
  Render(array.Description());
  return 0;
}
