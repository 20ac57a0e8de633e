#include "klv/SystemMetadataPack.h"

#include <algorithm>

#include "fuzz/Fuzz.h"

// A packet.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return ImportAndAsk<SystemMetadataPack>(data, size, [](SystemMetadataPack& pack) {
    unsigned char date[SystemMetadataPack::kDateSize];
    for (const unsigned int type : {pack.CreationDateType(), pack.UserDataType()}) {
      MUST(type == 0 || type == 0x81 || type == 0x82);
    }
    MUST(pack.CreationDate(date) && std::equal(date, date + sizeof(date), pack.CreationDate()));
    MUST(pack.UserDate(date) && std::equal(date, date + sizeof(date), pack.UserDate()));
    Render(pack.UnibersalLabel());
    pack.init();
    MUST(pack.SystemItemBitmap() == 0 && pack.ContinuityCount() == 0 && pack.UserDate()[0] == 0);
  });
}
