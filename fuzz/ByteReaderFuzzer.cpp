#include "fuzz/FuzzInput.h"

// Any sequence of reads: each moves the position by what it consumed, or not at all.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzInput choices(data, size);
  ParseMetaData reader(choices.Stream());
  KLVPacket packet;
  while (!choices.isEmpty()) {
    unsigned int number = 0;
    _Timestamp timestamp{};
    _Rational rational{};
    switch (choices.Choose(13)) {
      case 0:
        static_cast<void>(reader.SetOffset(static_cast<long long>(choices.Number()), choices.Byte()));
        break;
      case 1:
        static_cast<void>(reader.SetOffset(static_cast<signed char>(choices.Byte()), 1));
        break;
      case 2:
        static_cast<void>(reader.GetUInt32(&number));
        break;
      case 3:
        static_cast<void>(reader.GetBER(&number));
        break;
      case 4:
        static_cast<void>(reader.GetOIDBER(&number));
        break;
      case 5:
        static_cast<void>(reader.GetTimestamp(&timestamp));
        break;
      case 6:
        static_cast<void>(reader.GetRational(&rational));
        break;
      case 7:
        static_cast<void>(reader.GetUMID());
        break;
      case 8:
        static_cast<void>(reader.GetUUIDArray());
        break;
      case 9:
        static_cast<void>(reader.GetEnum(choices.Number() >> choices.Choose(64)));
        break;
      case 10:
        static_cast<void>(reader.GetUTF16String(static_cast<unsigned int>(choices.Number())));
        break;
      case 11:
        static_cast<void>(reader.CopyMemoryStream(choices.Number() >> choices.Choose(64)));
        break;
      default:
        static_cast<void>(reader.ParseKeyAndLength(&packet));
        break;
    }
  }
  return 0;
}
