#include "metadata/HeaderMetadata.h"

#include "fuzz/Fuzz.h"

// The packets of a header partition: a primer pack and metadata sets.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  ParseMetaData reader(StreamOf(data, size));
  const OxSharedPtr<HeaderMetadata> header(new HeaderMetadata);
  const OxSharedPtr<KLVPacket> packet(new KLVPacket);
  while (reader.ReadKeyAndLength(packet.get()) == PacketHead::Read) {
    const OxSharedPtr<PrimerPack> primer(new PrimerPack(packet));
    const OxSharedPtr<STMetadataSets> set(new STMetadataSets(packet));
    const bool isPrimer = primer->isImportable();
    if (!reader.ParsePacketValue(isPrimer ? static_cast<KLVPacket*>(primer.get()) : set.get())) continue;
    if (isPrimer) header->SetPrimerPack(primer);
    if (!isPrimer) MUST(header->AddMetadata(set) == kStatusUnreadable);
  }
  static_cast<void>(header->Analyze());
  AskHeader(*header, [](const About&, unsigned long long) {});
  const unsigned int count = header->MaterialPackageCount();
  static_cast<void>(header->Analyze());
  MUST(header->MaterialPackageCount() == count);
  return 0;
}
