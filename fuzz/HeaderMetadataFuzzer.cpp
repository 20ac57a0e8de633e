#include "fuzz/FuzzInput.h"
#include "metadata/HeaderMetadata.h"

// A run of packets taken for header metadata, then every track and descriptor that they lead to.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  ParseMetaData reader(FuzzInput(data, size).Stream());
  HeaderMetadata header;
  const OxSharedPtr<KLVPacket> packet(new KLVPacket);
  while (reader.ReadKeyAndLength(packet.get()) == PacketHead::Read) {
    const OxSharedPtr<PrimerPack> primer(new PrimerPack(packet));
    const OxSharedPtr<STMetadataSets> set(new STMetadataSets(packet));
    KLVPacket* taken = set.get();
    if (primer->isImportable()) taken = primer.get();
    if (!reader.ParsePacketValue(taken)) break;
    if (primer->isImportable()) header.SetPrimerPack(primer);
    static_cast<void>(header.AddMetadata(set));
  }
  static_cast<void>(header.Analyze());
  for (unsigned int package = 0; package < header.MaterialPackageCount(); ++package) {
    for (unsigned int i = 0; i < header.TrackCount(package) && i < 8; ++i) {
      const OxSharedPtr<STTrack> track = header.TrackForIndex(i, package);
      for (unsigned int j = 0; track && j < track->ComponentCount(); ++j) {
        static_cast<void>(track->ValueForTag(0x3203, j));
      }
    }
  }
  return 0;
}
