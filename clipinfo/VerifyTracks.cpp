#include <algorithm>
#include <map>

#include "clipinfo/VerifySteps.h"
#include "foundation/OxArray.h"

namespace {

// One track of a package and what hangs under it.
struct TrackFacts {
  const MetadataSet* set = nullptr;
  const MetadataSet* sequence = nullptr;
  std::vector<const MetadataSet*> components;
  unsigned int id = 0;
  unsigned int number = 0;
  long long origin = 0;
  long long duration = 0;  // of the sequence; negative while the clip is recorded
  _Rational editRate{};
};

struct PackageFacts {
  const MetadataSet* set;
  OxSharedPtr<UMID> umid;
  std::vector<TrackFacts> tracks;
};

bool isZero(const OxSharedPtr<UMID>& umid) {
  for (unsigned int i = 0; i < umid->Length(); ++i) {
    if (umid->ValueAtIndex(i) != 0) return false;
  }
  return true;
}

// The label of a UMID, and its length byte (ST 330).
bool isUMID(const OxSharedPtr<UMID>& umid) {
  constexpr unsigned char kHead[] = {0x06, 0x0A, 0x2B, 0x34};
  constexpr unsigned int kLengthByte = 12;
  for (unsigned int i = 0; i < std::size(kHead); ++i) {
    if (umid->ValueAtIndex(i) != kHead[i]) return false;
  }
  const unsigned char length = umid->ValueAtIndex(kLengthByte);
  return length == 0x13 || length == 0x33;
}

bool isSameRate(const _Rational& a, const _Rational& b) {
  return static_cast<long long>(a.numerator) * b.denominator == static_cast<long long>(b.numerator) * a.denominator;
}

class TrackCheck {
 public:
  TrackCheck(VerifyFile& file, const MetadataGraph& graph, EssenceFacts& facts)
      : m_file(file), m_graph(graph), m_facts(facts) {}

  void Run() {
    if (m_graph.preface == nullptr) return;
    CheckPreface();
    for (const MetadataSet* const storage : m_graph.Referenced(*m_graph.preface, 0x3B03)) ReadStorage(*storage);
    for (const PackageFacts& package : m_packages) CheckPackage(package);
    for (const MetadataSet* const container : m_containers) CheckContainer(*container);
  }

 private:
  void Add(FindingKind kind, const MetadataSet& set, const std::string& detail) {
    m_file.findings.Add(kind, set.offset, std::string(SetName(set.kind)) + ": " + detail);
  }

  // What the partition pack repeats of the preface.
  void CheckPreface() {
    const OxSharedPtr<MxfUUID> pattern = m_graph.preface->set->UUIDForTag(0x3B09);
    const OxSharedPtr<MxfUUID> said = m_graph.pack->OperationalPattern();
    if (pattern && said && *pattern != *said) {
      Add(FindingKind::PartitionDiffers, *m_graph.preface, "another operational pattern than the partition pack");
    }
    const std::vector<MxfUUID> listed = m_graph.preface->References(0x3B0A);
    std::set<MxfUUID> packed;
    for (unsigned int i = 0; i < m_graph.pack->EssenceCount(); ++i) packed.insert(*m_graph.pack->EssenceAtIndex(i));
    if (std::set<MxfUUID>(listed.begin(), listed.end()) != packed) {
      Add(FindingKind::PartitionDiffers, *m_graph.preface, "other essence containers than the partition pack");
    }
  }

  void ReadStorage(const MetadataSet& storage) {
    for (const MetadataSet* const package : m_graph.Referenced(storage, 0x1901)) ReadPackage(*package);
    m_containers = m_graph.Referenced(storage, 0x1902);
  }

  void ReadPackage(const MetadataSet& set) {
    PackageFacts package{&set, set.set->UMIDForTag(0x4401), {}};
    for (const MetadataSet* const track : m_graph.Referenced(set, 0x4403)) {
      if (track->kind == kTrack && TakeRoom(*track)) package.tracks.push_back(ReadTrack(*track));
    }
    if (!package.umid || !isUMID(package.umid)) Add(FindingKind::SetProperty, set, "its PackageUID is no UMID");
    if (package.umid && FindPackage(package.umid) != nullptr) Add(FindingKind::SetDuplicate, set, "PackageUID");
    // The clip's duration is that of the first track of the first material package.
    if (set.kind == kMaterialPackage && m_facts.editRate.denominator == 0 && !package.tracks.empty()) {
      m_facts.duration = package.tracks.front().duration;
      m_facts.editRate = package.tracks.front().editRate;
    }
    m_packages.push_back(std::move(package));
  }

  TrackFacts ReadTrack(const MetadataSet& set) {
    TrackFacts track;
    track.set = &set;
    const bool isRead = set.Get(0x4801, track.id) && set.Get(0x4804, track.number) && set.Get(0x4B01, track.editRate) &&
                        set.Get(0x4B02, track.origin);
    if (!isRead || track.id == 0) Add(FindingKind::Track, set, "its properties cannot be read, or its TrackID is 0");
    if (track.editRate.numerator <= 0 || track.editRate.denominator <= 0) Add(FindingKind::Track, set, "EditRate");
    const std::vector<const MetadataSet*> sequences = m_graph.Referenced(set, 0x4803);
    if (sequences.empty()) return track;
    track.sequence = sequences.front();
    static_cast<void>(track.sequence->Get(0x0202, track.duration));
    track.components = m_graph.Referenced(*track.sequence, 0x1001);
    m_room -= std::min<std::size_t>(m_room, track.components.size());
    return track;
  }

  // Packages may list one track again and again, and tracks one component.
  bool TakeRoom(const MetadataSet& track) {
    if (m_room == 0) Add(FindingKind::Abandoned, track, "more tracks and components than a clip has");
    if (m_room > 0) --m_room;
    return m_room > 0;
  }

  const PackageFacts* FindPackage(const OxSharedPtr<UMID>& umid) const {
    for (const PackageFacts& package : m_packages) {
      if (package.umid && package.umid->isEqualToUMID(umid)) return &package;
    }
    return nullptr;
  }
  static const TrackFacts* FindTrack(const PackageFacts& package, unsigned int id) {
    for (const TrackFacts& track : package.tracks) {
      if (track.id == id) return &track;
    }
    return nullptr;
  }

  void CheckPackage(const PackageFacts& package) {
    std::set<unsigned int> ids;
    if (package.tracks.empty()) Add(FindingKind::Track, *package.set, "no track");
    for (const TrackFacts& track : package.tracks) {
      if (!ids.insert(track.id).second) Add(FindingKind::Track, *track.set, "its TrackID stands twice");
      if (track.origin != package.tracks.front().origin) Add(FindingKind::Track, *track.set, "another Origin");
      if (!isSameRate(track.editRate, package.tracks.front().editRate)) {
        Add(FindingKind::Track, *track.set, "another edit rate than the first track");
      }
      CheckDurations(track);
      for (const MetadataSet* const component : track.components) CheckComponent(track, *component);
    }
    CheckSources(package);
    if (package.set->kind == kSourcePackage) CheckDescriptors(package);
  }

  void CheckDurations(const TrackFacts& track) {
    if (track.sequence == nullptr) return;
    if (track.duration != m_facts.duration) {
      Add(FindingKind::TrackDuration, *track.sequence,
          std::to_string(track.duration) + " instead of " + std::to_string(m_facts.duration));
    }
    long long left = track.duration;
    for (const MetadataSet* const component : track.components) {
      long long duration = 0;
      const bool isAdded = component->Get(0x0202, duration) && duration >= -1 && duration <= left;
      left -= isAdded && duration > 0 ? duration : 0;
      if (!isAdded) Add(FindingKind::TrackDuration, *component, std::to_string(duration));
    }
    if (track.duration >= 0 && left != 0) {
      Add(FindingKind::TrackDuration, *track.sequence,
          "its components are " + std::to_string(left) + " edit units short");
    }
  }

  void CheckComponent(const TrackFacts& track, const MetadataSet& component) {
    const OxSharedPtr<MxfUUID> whole = track.sequence->set->UUIDForTag(0x0201);
    const OxSharedPtr<MxfUUID> part = component.set->UUIDForTag(0x0201);
    if (whole && part && *whole != *part)
      Add(FindingKind::Track, component, "another DataDefinition than its sequence");
    if (component.kind == kTimecodeComponent) CheckTimecode(track, component);
    if (component.kind == kSourceClip) CheckSourceClip(track, component);
  }

  void CheckTimecode(const TrackFacts& track, const MetadataSet& component) {
    unsigned short base = 0;
    long long start = 0;
    const bool isRead = component.Get(0x1502, base) && component.Get(0x1501, start);
    const long long rate =
        track.editRate.denominator > 0
            ? (track.editRate.numerator + track.editRate.denominator / 2LL) / track.editRate.denominator
            : 0;
    if (!isRead || start < 0 || base != rate) Add(FindingKind::Track, component, "base or start of the timecode");
  }

  void CheckSourceClip(const TrackFacts& track, const MetadataSet& clip) {
    const OxSharedPtr<UMID> umid = clip.set->UMIDForTag(0x1101);
    unsigned int id = 0;
    long long start = 0;
    if (!umid || !clip.Get(0x1102, id) || !clip.Get(0x1201, start)) return;  // told as properties
    const PackageFacts* const package = FindPackage(umid);
    if (isZero(umid)) {  // the original source
      if (id != 0 || start != 0) Add(FindingKind::PackageReference, clip, "a track or position of no package");
      return;
    }
    if (package == nullptr || package->set->kind != kSourcePackage) {
      Add(FindingKind::PackageReference, clip, std::string("package ") + umid->Description()->UTF8String());
      return;
    }
    const TrackFacts* const source = FindTrack(*package, id);
    if (source == nullptr || !isSameData(track, *source)) {
      Add(FindingKind::PackageReference, clip, "track " + std::to_string(id));
    } else if (start < 0 || (source->duration >= 0 && (start > source->duration - std::max(0LL, track.duration)))) {
      Add(FindingKind::PackageReference, clip,
          "StartPosition " + std::to_string(start) + " lies outside the source track");
    }
  }

  static bool isSameData(const TrackFacts& a, const TrackFacts& b) {
    if (a.sequence == nullptr || b.sequence == nullptr) return false;
    const OxSharedPtr<MxfUUID> ours = a.sequence->set->UUIDForTag(0x0201);
    const OxSharedPtr<MxfUUID> theirs = b.sequence->set->UUIDForTag(0x0201);
    return ours && theirs && *ours == *theirs;
  }

  // Two tracks that show one source track leave another one out.
  void CheckSources(const PackageFacts& package) {
    std::set<unsigned int> sources;
    for (const TrackFacts& track : package.tracks) {
      unsigned int id = 0;
      const bool isOnlyClip = track.components.size() == 1 && track.components.front()->kind == kSourceClip;
      if (!isOnlyClip || !track.components.front()->Get(0x1102, id) || id == 0) continue;
      if (!sources.insert(id).second) {
        Add(FindingKind::PackageReference, *track.components.front(),
            "track " + std::to_string(id) + ", as another track");
      }
    }
  }

  // Each track with essence has a descriptor, and each descriptor that is linked at all is linked to a track.
  void CheckDescriptors(const PackageFacts& package) {
    std::vector<const MetadataSet*> descriptors = m_graph.Referenced(*package.set, 0x4701);
    if (!descriptors.empty() && descriptors.front()->kind == kMultipleDescriptor) {
      descriptors = m_graph.Referenced(*descriptors.front(), 0x3F01);
    }
    std::set<unsigned int> linked;
    for (const MetadataSet* const descriptor : descriptors) {
      unsigned int id = 0;
      if (!descriptor->Get(0x3006, id)) continue;
      linked.insert(id);
      if (FindTrack(package, id) == nullptr)
        Add(FindingKind::Track, *descriptor, "LinkedTrackID " + std::to_string(id));
    }
    for (const TrackFacts& track : package.tracks) {
      if (track.number == 0) continue;
      m_facts.trackNumbers.insert(track.number);
      if (linked.count(track.id) == 0) Add(FindingKind::Track, *track.set, "no descriptor is linked to it");
    }
  }

  void CheckContainer(const MetadataSet& container) {
    const OxSharedPtr<UMID> umid = container.set->UMIDForTag(0x2701);
    const PackageFacts* const package = umid ? FindPackage(umid) : nullptr;
    if (package == nullptr || package->set->kind != kSourcePackage) {
      Add(FindingKind::PackageReference, container, "LinkedPackageUID is no source package's");
    }
    unsigned int sid = 0;
    if (container.Get(0x3F07, sid)) m_facts.bodySIDs.insert(sid);
    if (container.Get(0x3F06, sid)) m_facts.indexSIDs.insert(sid);
  }

  VerifyFile& m_file;
  const MetadataGraph& m_graph;
  EssenceFacts& m_facts;
  std::vector<PackageFacts> m_packages;
  std::size_t m_room = 100000;  // for tracks and components
  std::vector<const MetadataSet*> m_containers;
};

}  // namespace

void CheckTracks(VerifyFile& file, const MetadataGraph& graph, EssenceFacts& facts) {
  TrackCheck(file, graph, facts).Run();
}
