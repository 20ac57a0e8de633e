#include "fuzz/Fuzz.h"
#include "metadata/STMetadataSets.h"

namespace {

void Ask(STMetadataSets& set, const OxSharedPtr<PrimerPack>& primer) {
  for (const _LocalTag tag : AllTags()) {
    static_cast<void>(DigestOf(set.ValueForTag(tag)));
    const unsigned int length = set.LengthForTag(tag);
    MUST(length == 0 || set.GetParserForTag(tag));
    if (!set.GetParserForTag(tag)) continue;
    MUST(static_cast<bool>(set.UUIDForTag(tag)) == (length == 16));
    for (const OxSharedPtr<OxObject>& value :
         {OxSharedPtr<OxObject>(set.UUIDArrayValueForTag(tag)), OxSharedPtr<OxObject>(set.OxStringValueForTag(tag)),
          OxSharedPtr<OxObject>(set.UMIDForTag(tag)), OxSharedPtr<OxObject>(set.EnumForTag(tag)),
          OxSharedPtr<OxObject>(set.SInt32ArrayForTag(tag)), OxSharedPtr<OxObject>(set.PixelLayoutForTag(tag)),
          OxSharedPtr<OxObject>(set.EnumArrayForTag(tag))}) {
      static_cast<void>(DigestOf(value));
    }
    for (unsigned int type = 0; type <= 11; ++type) {
      const auto value = set.ValueForTagAndType(tag, static_cast<_MDValueType>(type), length);
      try {
        static_cast<void>(DigestOf(value));
      } catch (const char*) {  // an item that is shorter than the type asked for
      }
    }
  }
  for (const OxSharedPtr<MxfUUID>& label : AllProperties())
    static_cast<void>(DigestOf(set.ValueForUUID(label, primer)));
}

}  // namespace

// Packets, one after the other: primer packs, which hold for the local sets that follow.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  ParseMetaData reader(StreamOf(data, size));
  OxSharedPtr<PrimerPack> primer(new PrimerPack);
  const OxSharedPtr<KLVPacket> packet(new KLVPacket);
  for (int i = 0; i < 8 && reader.ReadKeyAndLength(packet.get()) == PacketHead::Read; ++i) {
    if (packet->PacketType() == kKeyPrimerPack) primer = OxSharedPtr<PrimerPack>(new PrimerPack(packet));
    const OxSharedPtr<STMetadataSets> set(new STMetadataSets(packet));
    const bool isPrimer = packet->PacketType() == kKeyPrimerPack;
    if (!reader.ParsePacketValue(isPrimer ? static_cast<KLVPacket*>(primer.get()) : set.get())) return 0;
    Ask(*set, primer);
    static_cast<void>(DigestOf(set));
  }
  return 0;
}
