#include <algorithm>
#include <array>
#include <memory>

#include "clipinfo/Clip.h"
#include "clipinfo/ClipList.h"
#include "clipinfo/Commands.h"
#include "clipinfo/Faults.h"
#include "clipinfo/Summary.h"
#include "klv/SystemMetadataPack.h"

namespace {

constexpr _LocalTag kSubDescriptorsTag = 0x8080;
constexpr _LocalTag kOperationalPatternTag = 0x3B09;
constexpr unsigned int kPictureTrack = 1;
constexpr unsigned int kSystemItem = 0;
constexpr unsigned int kFirstSound = 2;

// --- What the header tells ---

std::string DurationText(const MXFStream& stream) {
  const OxSharedPtr<HeaderMetadata> header = stream.GetHeaderMetadata();
  const OxSharedPtr<STTrack> track = header->TrackForIndex(0, 0);
  const std::string rate = track ? " at " + RationalText(track->EditRate()) + " per second" : "";
  if (stream.Duration() < 0) return "not known yet" + rate;
  return std::to_string(stream.Duration()) + " edit units" + rate + ", " +
         TimecodeText(stream.Duration(), ClipTimebase(*header));
}

void PrintHead(std::ostream& out, Clip& clip) {
  const OxSharedPtr<PartitionPack> pack = clip.Stream().GetHeaderPartitionPack();
  const OxSharedPtr<HeaderMetadata> header = clip.Stream().GetHeaderMetadata();
  PrintRow(out, 0, "Duration", DurationText(clip.Stream()));
  PrintRow(out, 0, "Operational pattern", ValueText(header->PrefaceInfoForTag(kOperationalPatternTag)));
  const unsigned int containers = std::min(pack->EssenceCount(), 32u);
  for (unsigned int i = 0; i < containers; ++i) {
    PrintRow(out, 0, i == 0 ? "Essence containers" : "", ValueText(pack->EssenceAtIndex(i)));
  }
  PrintRow(out, 0, "Last modified", ValueText(header->PrefaceInfoForTag(0x3B02)));
  PrintRow(out, 0, "Partition version",
           std::to_string(pack->MajorVersion()) + "." + std::to_string(pack->MinorVersion()));
  if (clip.isHeaderIndexMissing()) PrintRow(out, 0, "Index", "no index in the header partition");
}

void PrintIdentifications(std::ostream& out, const HeaderMetadata& header) {
  constexpr Item kItems[] = {{0x3C01, "company"}, {0x3C02, "product"},     {0x3C04, "version"},
                             {0x3C06, "date"},    {0x3C05, "product UID"}, {0x3C09, "generation UID"}};
  for (unsigned int i = 0; i < header.IdentificationCount(); ++i) {
    PrintRow(out, 0, "Identification " + std::to_string(i + 1), "");
    PrintItems(out, 1, kItems, [&](_LocalTag tag) { return header.IdentificationInfoForTag(tag, i); });
  }
}

// --- Camera information ---

// The answer to a query that writes `size` bytes, or nothing when the clip does not carry the item: asked twice with
// different presets, so that an answer of any bytes is told from none.
template <std::size_t size, class Query, class Wording>
std::string AnswerText(Query query, Wording wording) {
  std::array<unsigned char, size> answer{};
  std::array<unsigned char, size> again;
  again.fill(0xFF);
  if (query(answer.data()) != kStatusOK || query(again.data()) != kStatusOK) return kUnreadable;
  return answer == again ? wording(answer.data()) : kNotPresent;
}

std::string CreationDateText(const unsigned char* date) {
  constexpr unsigned int kSize = SystemMetadataPack::kDateSize;
  const bool isZero = std::all_of(date, date + kSize, [](unsigned char byte) { return byte == 0; });
  return HexText(date, kSize) + (isZero ? " (all zero: not set)" : "");
}

// An unreadable answer may mean that there is nothing to read: whoever asks must know where to look for it.
std::string NumberText(unsigned int status, const OxSharedPtr<OxNumber>& number, bool isCarried) {
  if (status != kStatusOK) return isCarried ? kUnreadable : kNotPresent;
  return number ? std::string(number->Description()->UTF8String()) : kNotPresent;
}

// Whether a second packet follows the system metadata pack in the system item of the first edit unit. Also true where
// that cannot be told.
bool isPackageSetPresent(Clip& clip) {
  unsigned long long offset = 0;
  if (clip.Stream().GetEssenceOffset(0, kSystemItem, offset) != kStatusOK) return true;
  const Element pack = clip.ElementAt(offset);
  if (!pack.isRead || pack.type != kKeySystemMetadataPack) return !pack.isRead;
  const Element set = clip.ElementAt(pack.next);
  return !set.isRead || set.type == kKeySystemItemLocalSet;
}

std::string StabilizerText(Clip& clip) {
  OxSharedPtr<OxNumber> state;
  const unsigned int status = clip.Stream().GetImageStabilizer(&state);
  return NumberText(status, state, status == kStatusOK || isPackageSetPresent(clip));
}

std::string BitRateText(const MXFStream& stream) {
  OxSharedPtr<OxNumber> rate;
  const unsigned int status = stream.GetVideoBitRate(&rate);
  const OxSharedPtr<STTrack> track = stream.GetHeaderMetadata()->TrackForIndex(kPictureTrack, 0);
  const std::string text = NumberText(status, rate, !track || track->ValueForTag(kSubDescriptorsTag, 0));
  return rate ? text + " bits per second" : text;
}

// Without sound in the clip the element after the picture does not exist, and asking for it fails.
std::string AudioChannelText(Clip& clip) {
  const unsigned int elements = clip.ElementCount(0);
  if (elements > 0 && elements <= kFirstSound) return kNotPresent;
  const auto query = [&clip](unsigned char* count) { return clip.Stream().GetAudioChannel(count); };
  return AnswerText<1>(query, [](const unsigned char* count) { return std::to_string(*count); });
}

void PrintSequenceInfo(std::ostream& out, const StreamFileSequenceInfo* info) {
  PrintRow(out, 1, "sequence information", info == nullptr ? kNotPresent : "");
  if (info == nullptr) return;
  PrintRow(out, 2, "start timecode", ValueText(info->StartTimecode()));
  PrintRow(out, 2, "start position", ValueText(info->StartPosition()));
  PrintRow(out, 2, "package UID", ValueText(info->PackageUID()));
  PrintRow(out, 2, "instance UID", ValueText(info->InstanceUID()));
}

void PrintCamera(std::ostream& out, Clip& clip) {
  MXFStream& stream = clip.Stream();
  unsigned long long offset = 0;
  const bool isIndexed = stream.GetEssenceOffset(0, kSystemItem, offset) == kStatusOK;
  PrintRow(out, 0, "Camera information", isIndexed ? "" : std::string("edit unit 0: ") + clip.NoIndexText());
  PrintRow(out, 1, "user bits",
           AnswerText<4>([&](unsigned char* bits) { return stream.GetUserBit(bits); },
                         [](const unsigned char* bits) { return HexText(bits, 4); }));
  PrintRow(out, 1, "package creation date",
           AnswerText<SystemMetadataPack::kDateSize>(
               [&](unsigned char* date) { return stream.GetPackageCreationDate(date); }, CreationDateText));
  PrintRow(out, 1, "audio channels", AudioChannelText(clip));
  PrintRow(out, 1, "video bit rate", BitRateText(stream));
  PrintRow(out, 1, "image stabilizer", StabilizerText(clip));
  PrintSequenceInfo(out, stream.GetStreamFileSequenceInfo().get());
}

void PrintSummary(std::ostream& out, const std::string& path) {
  Clip clip(path);
  const OxSharedPtr<HeaderMetadata> header = clip.Stream().GetHeaderMetadata();
  out << Escaped(path) << '\n';
  PrintHead(out, clip);
  PrintPartitions(out, clip);
  PrintIdentifications(out, *header);
  PrintPackages(out, *header);
  PrintCamera(out, clip);
  out << '\n';
}

int Summarise(std::ostream& out, std::ostream& fault, const std::string& path) {
  const std::string reason = FaultOf([&] { PrintSummary(out, path); });
  if (reason.empty()) return kExitOK;
  PrintFault(fault, path, reason);
  return kExitFailed;
}

}  // namespace

Runner DefineInfo(CLI::App& app) {
  CLI::App* const info = app.add_subcommand("info", "Print what the clips' headers hold; the default");
  const auto clips = std::make_shared<ClipList>();
  clips->DefineOn(*info);
  return [clips] { return ForEachClip(*clips, Summarise); };
}
