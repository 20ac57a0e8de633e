#ifndef CLIPPARSER_FUZZ_ASKEVERYTHING_H
#define CLIPPARSER_FUZZ_ASKEVERYTHING_H

#include <algorithm>
#include <string>
#include <vector>

#include "stream/MXFStream.h"

// Opens the clip at `path` and puts every question of MXFStream to it, for up to `mostUnits` edit units. Calls
// `answer(name, number)` for what it is told, in an order that is the same for equal answers; bytes count as their sum.
template <class Answer>
void AskEverything(const std::string& path, unsigned int mostUnits, Answer answer) {
  MXFStream clip(CreateOxString(path));
  answer("Parse", clip.Parse());
  answer("Duration", static_cast<unsigned long long>(clip.Duration()));
  answer("GetEssenceDescriptor", clip.GetEssenceDescriptor());
  const OxSharedPtr<HeaderMetadata> header = clip.GetHeaderMetadata();
  answer("IdentificationCount", header->IdentificationCount());
  answer("EssenceContainerDataCount", header->EssenceContainerDataCount());
  for (unsigned int i = 0; i < std::min(header->TrackCount(0), 16u); ++i) {
    const OxSharedPtr<STTrack> track = header->TrackForIndex(i, 0);
    answer("TrackForIndex", track ? track->TrackNumber() : ~0ULL);
    for (unsigned int j = 0; track && j < std::min(track->ComponentCount(), 4u); ++j) {
      for (const _LocalTag tag : {0x0202u, 0x1101u, 0x1201u, 0x1501u, 0x3001u, 0x3202u, 0x3203u, 0x3D03u, 0x3401u}) {
        const OxSharedPtr<OxObject> value = track->ValueForTag(tag, j);
        answer("ValueForTag", value ? 1 : 0);
        if (value) static_cast<void>(value->Description());
      }
    }
  }

  unsigned char bytes[16] = {};
  OxSharedPtr<OxNumber> number;
  answer("GetUserBit", clip.GetUserBit(bytes));
  answer("GetPackageCreationDate", clip.GetPackageCreationDate(bytes));
  answer("GetAudioChannel", clip.GetAudioChannel(bytes));
  for (const unsigned char byte : bytes) answer("camera information", byte);
  answer("GetImageStabilizer", clip.GetImageStabilizer(&number));
  answer("GetVideoBitRate", clip.GetVideoBitRate(&number));
  answer("OxNumber", number ? number->UInt32Value() : ~0ULL);
  answer("GetStreamFileSequenceInfo", clip.GetStreamFileSequenceInfo() ? 1 : 0);

  const auto units = static_cast<unsigned int>(std::clamp(clip.Duration() + 1, 1LL, mostUnits * 1LL));
  std::vector<unsigned char> buffer(1 << 16);
  for (unsigned int unit = 0; unit < units; ++unit) {
    signed char temporal = 0;
    signed char key = 0;
    unsigned char flags = 0;
    answer("GetEditUnitInfo", clip.GetEditUnitInfo(unit, temporal, key, flags) ? 1 : 0);
    answer("GetEditUnitInfo", static_cast<unsigned long long>(temporal * 65536 + key * 256 + flags));
    answer("GetDataItem", clip.GetDataItem(unit).size());
    for (unsigned int element = 0; element < 6; ++element) {
      unsigned long long offset = ~0ULL;
      answer("GetEssenceOffset", clip.GetEssenceOffset(unit, element, offset));
      answer("GetEssenceOffset", offset);
      const _OxRange range = clip.RangeEssenceData(unit, element);
      answer("RangeEssenceData", range.location ^ range.length);
      const unsigned int count = clip.ReadEssenceData(unit, element, buffer.data(), 1 << 16);
      unsigned long long sum = count;
      for (unsigned int i = 0; i < count; ++i) sum = sum * 31 + buffer[i];
      answer("ReadEssenceData", sum);
    }
  }
}

#endif  // CLIPPARSER_FUZZ_ASKEVERYTHING_H
