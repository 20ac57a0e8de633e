#include <algorithm>
#include <array>

#include "clipinfo/InfoDocument.h"
#include "klv/SystemMetadataPack.h"

namespace {

constexpr _LocalTag kSubDescriptorsTag = 0x8080;
constexpr unsigned int kPictureTrack = 1;
constexpr unsigned int kSystemItem = 0;
constexpr unsigned int kFirstSound = 2;

// The camera's answers, and the names of those that could not be read.
class Answers {
 public:
  void Add(const char* name, Json answer) { m_json[name] = std::move(answer); }
  // An unreadable answer may mean that there is nothing to read: whoever asks must know where to look for it.
  void AddFailure(const char* name, bool isCarried) {
    m_json[name] = nullptr;
    if (isCarried) m_unreadable.push_back(name);
  }
  void AddNumber(const char* name, unsigned int status, const OxSharedPtr<OxNumber>& number, bool isCarried) {
    if (status != kStatusOK) return AddFailure(name, isCarried);
    Add(name, ValueJson(number));
  }
  // The answer to a query that writes `size` bytes, null when the clip does not carry the item: asked twice with
  // different presets, so that an answer of any bytes is told from none.
  template <std::size_t size, class Query, class ToJson>
  void AddBytes(const char* name, Query query, ToJson toJson) {
    std::array<unsigned char, size> answer{};
    std::array<unsigned char, size> again;
    again.fill(0xFF);
    if (query(answer.data()) != kStatusOK || query(again.data()) != kStatusOK) return AddFailure(name, true);
    Add(name, answer == again ? toJson(answer) : Json());
  }
  [[nodiscard]] Json Take() {
    m_json["unreadable"] = std::move(m_unreadable);
    return std::move(m_json);
  }

 private:
  Json m_json = Json::object();
  Json m_unreadable = Json::array();
};

template <std::size_t size>
Json BytesJson(const std::array<unsigned char, size>& bytes) {
  return HexText(bytes.data(), size);
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

void AddStabilizer(Answers& answers, Clip& clip) {
  OxSharedPtr<OxNumber> state;
  const unsigned int status = clip.Stream().GetImageStabilizer(&state);
  answers.AddNumber("image_stabilizer", status, state, status == kStatusOK || isPackageSetPresent(clip));
}

void AddBitRate(Answers& answers, const MXFStream& stream) {
  OxSharedPtr<OxNumber> rate;
  const unsigned int status = stream.GetVideoBitRate(&rate);
  const OxSharedPtr<STTrack> track = stream.GetHeaderMetadata()->TrackForIndex(kPictureTrack, 0);
  answers.AddNumber("video_bit_rate", status, rate, !track || track->ValueForTag(kSubDescriptorsTag, 0));
}

// Without sound in the clip the element after the picture does not exist, and asking for it fails.
void AddAudioChannels(Answers& answers, Clip& clip) {
  constexpr const char* kName = "audio_channels";
  const unsigned int elements = clip.ElementCount(0);
  if (elements > 0 && elements <= kFirstSound) return answers.AddFailure(kName, false);
  const auto query = [&clip](unsigned char* count) { return clip.Stream().GetAudioChannel(count); };
  answers.AddBytes<1>(kName, query, [](const std::array<unsigned char, 1>& count) { return Json(count[0]); });
}

Json SequenceInfoJson(const StreamFileSequenceInfo& info) {
  return {{"start_timecode", ValueJson(info.StartTimecode())},
          {"start_position", ValueJson(info.StartPosition())},
          {"package_umid", ValueJson(info.PackageUID())},
          {"instance_uid", ValueJson(info.InstanceUID())}};
}

}  // namespace

Json CameraJson(Clip& clip) {
  MXFStream& stream = clip.Stream();
  unsigned long long offset = 0;
  const bool isIndexed = stream.GetEssenceOffset(0, kSystemItem, offset) == kStatusOK;
  Answers answers;
  answers.Add("no_index_reason", isIndexed ? Json() : Json(clip.NoIndexText()));
  answers.AddBytes<4>(
      "user_bits", [&](unsigned char* bits) { return stream.GetUserBit(bits); }, BytesJson<4>);
  answers.AddBytes<SystemMetadataPack::kDateSize>(
      "package_creation_date", [&](unsigned char* date) { return stream.GetPackageCreationDate(date); },
      BytesJson<SystemMetadataPack::kDateSize>);
  AddAudioChannels(answers, clip);
  AddBitRate(answers, stream);
  AddStabilizer(answers, clip);
  const OxSharedPtr<StreamFileSequenceInfo> info = stream.GetStreamFileSequenceInfo();
  answers.Add("sequence_information", info ? SequenceInfoJson(*info) : Json());
  return answers.Take();
}
