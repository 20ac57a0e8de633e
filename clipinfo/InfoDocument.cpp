#include "clipinfo/InfoDocument.h"

#include <algorithm>

namespace {

constexpr unsigned int kMostContainers = 32;

constexpr _LocalTag kLastModifiedTag = 0x3B02;
constexpr _LocalTag kOperationalPatternTag = 0x3B09;

struct Item {
  const char* name;
  _LocalTag tag;
};
constexpr Item kIdentificationItems[] = {{"company", 0x3C01}, {"product", 0x3C02},     {"version", 0x3C04},
                                         {"date", 0x3C06},    {"product_uid", 0x3C05}, {"generation_uid", 0x3C09}};

Json ContainersJson(const PartitionPack& pack) {
  Json containers = Json::array();
  const unsigned int count = std::min(pack.EssenceCount(), kMostContainers);
  for (unsigned int i = 0; i < count; ++i) containers.push_back(LabelJson(pack.EssenceAtIndex(i)));
  return containers;
}

Json IdentificationsJson(const HeaderMetadata& header) {
  Json identifications = Json::array();
  for (unsigned int i = 0; i < header.IdentificationCount(); ++i) {
    Json identification = Json::object();
    for (const Item& item : kIdentificationItems) {
      identification[item.name] = ValueJson(header.IdentificationInfoForTag(item.tag, i));
    }
    identifications.push_back(std::move(identification));
  }
  return identifications;
}

}  // namespace

void AddInfo(Json& document, Clip& clip) {
  const OxSharedPtr<PartitionPack> pack = clip.Stream().GetHeaderPartitionPack();
  const OxSharedPtr<HeaderMetadata> header = clip.Stream().GetHeaderMetadata();
  const OxSharedPtr<STTrack> track = header->TrackForIndex(0, 0);
  const long long duration = clip.Stream().Duration();
  const bool isKnown = duration >= 0;  // a clip that is still being recorded may say -1
  document["duration"] = isKnown ? NumberJson(duration) : Json();
  document["duration_timecode"] = isKnown ? TimecodeJson(duration, ClipTimebase(*header)) : Json();
  document["edit_rate"] = track ? RationalJson(track->EditRate()) : Json();
  document["last_modified"] = ValueJson(header->PrefaceInfoForTag(kLastModifiedTag));
  document["operational_pattern"] = ValueJson(header->PrefaceInfoForTag(kOperationalPatternTag));
  document["essence_containers"] = ContainersJson(*pack);
  document["partition_version"] = {{"major", pack->MajorVersion()}, {"minor", pack->MinorVersion()}};
  document["is_header_index_missing"] = clip.isHeaderIndexMissing();
  document["partitions"] = PartitionsJson(clip);
  document["identifications"] = IdentificationsJson(*header);
  document["packages"] = PackagesJson(*header);
  document["camera"] = CameraJson(clip);
}
