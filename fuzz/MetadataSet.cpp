#include "fuzz/Fuzz.h"
#include "metadata/STMetadataSets.h"

namespace {

void Ask(STMetadataSets& set, const OxSharedPtr<PrimerPack>& primer) {
  for (const _LocalTag tag : AllTags()) {
    const unsigned int length = set.LengthForTag(tag);
    Render(set.ValueForTag(tag), set.UUIDArrayValueForTag(tag), set.OxStringValueForTag(tag), set.UMIDForTag(tag));
    Render(set.EnumForTag(tag), set.SInt32ArrayForTag(tag), set.PixelLayoutForTag(tag), set.EnumArrayForTag(tag));
    MUST(static_cast<bool>(set.UUIDForTag(tag)) == (length == 16));
    for (unsigned int type = 0; type <= 11; ++type) {
      try {
        Render(set.ValueForTagAndType(tag, static_cast<_MDValueType>(type), length));
      } catch (const char*) {  // an item that is shorter than the type asked for
      }
    }
  }
  for (const OxSharedPtr<MxfUUID>& label : AllProperties()) Render(set.ValueForUUID(label, primer));
}

}  // namespace

// Packets, one after the other: primer packs, which hold for the local sets that follow.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  ParseMetaData reader(StreamOf(data, size));
  OxSharedPtr<PrimerPack> primer(new PrimerPack);
  const OxSharedPtr<KLVPacket> packet(new KLVPacket);
  for (int i = 0; i < 8 && reader.ReadKeyAndLength(packet.get()) == PacketHead::Read; ++i) {
    const bool isPrimer = packet->PacketType() == kKeyPrimerPack;
    if (isPrimer) primer = OxSharedPtr<PrimerPack>(new PrimerPack(packet));
    const OxSharedPtr<STMetadataSets> set(new STMetadataSets(packet));
    if (!reader.ParsePacketValue(isPrimer ? static_cast<KLVPacket*>(primer.get()) : set.get())) return 0;
    Ask(*set, primer);
    Render(set);
  }
  return 0;
}
