#include "fuzz/FuzzInput.h"
#include "stream/BodyPartitionArray.h"

// Any sequence of calls; segments and packs come from the bytes that are left.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzInput choices(data, size);
  BodyPartitionArray array;
  for (int calls = 0; calls < 64 && !choices.isEmpty(); ++calls) {
    const unsigned int index = choices.Choose(4);
    const OxSharedPtr<PartitionPack> pack(new PartitionPack);
    const OxSharedPtr<IndexTableSegment> segment(new IndexTableSegment);
    unsigned int number = 0;
    unsigned long long offset = 0;
    ParseMetaData reader(choices.Stream());
    switch (choices.Choose(7)) {
      case 0:
        array.AddFront(choices.Byte());
        break;
      case 1:
        array.AddBack(choices.Byte());
        break;
      case 2:
        if (reader.ParsePacket(pack.get())) static_cast<void>(array.SetBodyPartitionData(index, pack));
        break;
      case 3:
      case 4:
        if (reader.ParsePacket(segment.get())) static_cast<void>(array.SetIndexTableSegment(index, number, segment));
        break;
      case 5:
        static_cast<void>(array.GetStreamOffset(static_cast<long long>(choices.Number()), index, offset));
        break;
      default: {
        const auto unit = static_cast<long long>(choices.Byte());
        unsigned int found = 0;
        if (!array.GetContainIndexTableSegment(unit, found, number)) break;
        const auto [start, duration] = array.EditUnitRangeAtIndex(found, number);
        if (unit < start || duration <= 0) __builtin_trap();
      }
    }
  }
  static_cast<void>(array.Description());
  return 0;
}
