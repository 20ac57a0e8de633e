#include "stream/MXFStream.h"

#include <algorithm>
#include <array>
#include <new>
#include <set>
#include <utility>

#include "foundation/OxAutoLock.h"
#include "foundation/UUIDDefine.h"
#include "klv/SystemMetadataPack.h"

namespace {

constexpr long long kOverallLengthSize = 4;  // of the random index pack: the last bytes of the file

constexpr unsigned int kMostIndexSteps = 100;
constexpr _OxRange kNoRange = {0x7FFFFFFFFFFFFFFF, 0};

// Elements of the content package.
constexpr unsigned int kSystemItem = 0;
constexpr unsigned int kFirstSound = 2;

// The system metadata pack as the cameras write it: key, four-byte BER length, value.
constexpr unsigned long long kSystemPackSize = 16 + 4 + 57;
constexpr long long kUserBitsOffset = SystemMetadataPack::kUserDateOffset + 4;
constexpr unsigned int kUserBitsSize = 4;
constexpr unsigned int kElementCountByte = 13;  // of an essence element's key (ST 379)

// The package metadata set, as far as camera metadata goes.
constexpr long long kCameraItemOffset = 67;
constexpr unsigned char kCameraItemTag = 0x88;
constexpr unsigned int kCameraRecordSize = 5;
constexpr unsigned char kStabilizerRecord = 2;

// The bit rate of the picture.
constexpr unsigned int kFewestTracks = 3;
constexpr unsigned int kPictureTrack = 1;
constexpr _LocalTag kSubDescriptorsTag = 0x8080;
constexpr _LocalTag kBitRateTag = 0x8007;

constexpr unsigned long long SaturatingSum(unsigned long long a, unsigned long long b) {
  return a > ~0ULL - b ? ~0ULL : a + b;
}

bool isPartitionOrIndexPack(unsigned int type) {
  return (type >= kKeyHeaderPartitionPack && type <= kKeyFooterPartitionPack) || type == kKeyRandomIndexPack;
}

}  // namespace

MXFStream::MXFStream(OxSharedPtr<OxStringMac> path) {
  constexpr const char* kInitError = "MXFStream init error";
  if (!path) throw kInitError;
  try {
    m_stream = CacheFileStream::Create(path);
    m_reader = OxSharedPtr<ParseMetaData>(new ParseMetaData(m_stream));
    m_bodyPartitions = OxSharedPtr<BodyPartitionArray>(new BodyPartitionArray);
    m_packet = OxSharedPtr<KLVPacket>(new KLVPacket);
    m_headerMetadata = OxSharedPtr<HeaderMetadata>(new HeaderMetadata);
  } catch (...) {  // its parts have texts of their own, which a host does not know
    throw kInitError;
  }
}

MXFStream::~MXFStream() = default;

// --- Opening ---

unsigned int MXFStream::Parse() {
  const unsigned long long failedReads = FailedReads();
  static_cast<void>(ReadRandomIndexPack());  // a file need not have one
  const bool isListed = TakeListedPartitions();
  unsigned int status = ReadHeaderPartitionPack();
  if (!isLowHalfOK(status)) return status;
  // What the walk finds before it fails is better than nothing.
  if (!isListed) static_cast<void>(ConstructBodyPartitionArrayFromStream());
  if (FailedReads() != failedReads) return kStatusUnreadable;  // partitions that the disk kept back are in no list
  status = ParseHeaderPartition();
  return isLowHalfOK(status) ? AnalysisDuration() : status;
}

// Lists the body partitions that the random index pack names; false without one.
bool MXFStream::TakeListedPartitions() {
  const OxAutoLock guard(m_reader.get());
  return m_randomIndexPack && isLowHalfOK(m_bodyPartitions->SetFromRandomIndexPack(m_randomIndexPack));
}

unsigned int MXFStream::ReadRandomIndexPack() {
  const OxAutoLock guard(m_reader.get());
  m_randomIndexPack.Reset();
  unsigned int length = 0;
  OxSharedPtr<RandomIndexPack> pack(new RandomIndexPack);
  const bool isRead = m_reader->SetOffset(-kOverallLengthSize, kOxStreamSeekFromEnd) && m_reader->GetUInt32(&length) &&
                      m_reader->SetOffset(-static_cast<long long>(length), kOxStreamSeekFromEnd) &&
                      m_reader->ParsePacket(pack.get());
  if (!isRead) return kStatusUnreadable;
  m_randomIndexPack = std::move(pack);
  return kStatusOK;
}

unsigned int MXFStream::ReadHeaderPartitionPack() {
  const OxAutoLock guard(m_reader.get());
  m_headerPartitionPack.Reset();
  OxSharedPtr<PartitionPack> pack(new PartitionPack);
  unsigned long long offset = 0;
  const bool isListed = m_randomIndexPack && m_randomIndexPack->GetOffsetAtIndex(0, offset);
  if (!(isListed && ReadHeaderPartitionPackAt(offset, pack)) && !FindHeaderPartitionPack(pack)) {
    return kStatusUnreadable;
  }
  m_headerPartitionPack = std::move(pack);
  return kStatusOK;
}

bool MXFStream::ReadHeaderPartitionPackAt(unsigned long long offset, const OxSharedPtr<PartitionPack>& pack) {
  // Where the position is refused, whatever lies at the reader's own position is looked at instead.
  static_cast<void>(MoveTo(offset));
  return m_reader->ParsePacket(pack.get()) && pack->PacketType() == kKeyHeaderPartitionPack;
}

bool MXFStream::FindHeaderPartitionPack(const OxSharedPtr<PartitionPack>& pack) {
  unsigned long long offset = 0;
  do {
    if (!MoveTo(offset) || m_reader->ReadKeyAndLength(pack.get()) != PacketHead::Read) return false;
    if (pack->PacketType() == kKeyNotSMPTE) return false;
    offset = pack->NextOffset();
  } while (pack->PacketType() != kKeyHeaderPartitionPack);
  return m_reader->ParsePacketValue(pack.get());
}

unsigned int MXFStream::ConstructBodyPartitionArrayFromStream() {
  const OxAutoLock guard(m_reader.get());
  if (!m_headerPartitionPack) return kStatusUnreadable;
  std::set<unsigned long long> visited;
  unsigned long long offset = m_headerPartitionPack->FooterPartition();
  do {
    // Links that lead back to where the walk has been would never end.
    if (!visited.insert(offset).second) return kStatusUnreadable;
    const OxSharedPtr<PartitionPack> pack = PartitionPackAt(offset);
    if (!pack) return kStatusUnreadable;
    if (pack->BodySID() == kEssenceBodySID) m_bodyPartitions->AddFront(offset);
    offset = pack->PreviousPartition();
  } while (offset != 0);
  return kStatusOK;
}

unsigned int MXFStream::ParseHeaderPartition() {
  const OxAutoLock guard(m_reader.get());
  if (!m_headerPartitionPack || m_headerPartitionPack->HeaderByteCount() == 0) return kStatusUnreadable;
  // The metadata begins one KAG after the partition, however long the pack and its fill really are.
  const unsigned long long start =
      SaturatingSum(m_headerPartitionPack->ThisPartition(), m_headerPartitionPack->KAGSize());
  const unsigned long long end = SaturatingSum(start, m_headerPartitionPack->HeaderByteCount());
  if (!MoveTo(start) || !ParseHeaderPackets(end)) return kStatusUnreadable;
  return m_headerMetadata->Analyze();
}

bool MXFStream::ParseHeaderPackets(unsigned long long end) {
  const OxSharedPtr<KLVPacket> packet(new KLVPacket);
  do {
    if (m_reader->ReadKeyAndLength(packet.get()) != PacketHead::Read || !ParseHeaderPacket(packet)) return false;
    // Tested after a whole packet: the last one is read in full even where it runs past the end.
  } while (static_cast<unsigned long long>(m_reader->offset()) < end);
  return true;
}

bool MXFStream::ParseHeaderPacket(const OxSharedPtr<KLVPacket>& packet) {
  const unsigned int type = packet->PacketType();
  if (isStructuralSet(type)) return ParseStructuralSet(packet);
  if (type == kKeyStreamFileSequenceInfo) return ParseSequenceInfo(packet);
  if (type == kKeyPrimerPack) return ParsePrimer(packet);
  return m_reader->SetOffset(static_cast<long long>(packet->Length()), kOxStreamSeekFromCurrent);
}

bool MXFStream::ParseStructuralSet(const OxSharedPtr<KLVPacket>& packet) {
  if (packet->PacketType() == kKeyCDCIDescriptor) m_essenceDescriptor = 0;
  if (packet->PacketType() == kKeyRGBADescriptor) m_essenceDescriptor = 1;
  const OxSharedPtr<STMetadataSets> set(new STMetadataSets(packet));
  if (!m_reader->ParsePacketValue(set.get())) return false;
  static_cast<void>(m_headerMetadata->AddMetadata(set));  // never says success
  return true;
}

bool MXFStream::ParseSequenceInfo(const OxSharedPtr<KLVPacket>& packet) {
  m_sequenceInfo = OxSharedPtr<StreamFileSequenceInfo>(new StreamFileSequenceInfo(packet));
  if (m_reader->ParsePacketValue(m_sequenceInfo.get())) return true;
  m_sequenceInfo.Reset();
  return false;
}

bool MXFStream::ParsePrimer(const OxSharedPtr<KLVPacket>& packet) {
  const OxSharedPtr<PrimerPack> primer(new PrimerPack(packet));
  if (!m_reader->ParsePacketValue(primer.get())) return false;
  m_headerMetadata->SetPrimerPack(primer);
  return true;
}

unsigned int MXFStream::AnalysisDuration() {
  const OxAutoLock guard(m_reader.get());
  m_duration = 0;
  const OxSharedPtr<STTrack> track = m_headerMetadata->TrackForIndex(0, 0);
  if (!track) return kStatusUnreadable;
  m_duration = track->Duration();
  return kStatusOK;
}

// --- Reading ---

// An offset beyond 2^63 becomes a negative one, where every read fails.
bool MXFStream::MoveTo(unsigned long long offset) {
  return m_reader->SetOffset(static_cast<long long>(offset), kOxStreamSeekFromStart);
}

OxSharedPtr<PartitionPack> MXFStream::PartitionPackAt(unsigned long long offset) {
  OxSharedPtr<PartitionPack> pack(new PartitionPack);
  return MoveTo(offset) && m_reader->ParsePacket(pack.get()) ? pack : OxSharedPtr<PartitionPack>();
}

// Key and length of an element; the reader then stands at its value.
PacketHead MXFStream::ReadElementHead(unsigned int editUnit, unsigned int element, KLVPacket& packet) {
  unsigned long long offset = 0;
  if (GetEssenceOffset(editUnit, element, offset) != kStatusOK || !MoveTo(offset)) return PacketHead::Failed;
  return m_reader->ReadKeyAndLength(&packet);
}

// --- Camera information ---

OxSharedPtr<StreamFileSequenceInfo> MXFStream::GetStreamFileSequenceInfoAtOffset(long long offset) const {
  OxSharedPtr<StreamFileSequenceInfo> info(new StreamFileSequenceInfo);
  ParseMetaData reader(m_stream);  // its own: this query takes no lock
  const bool isRead = reader.SetOffset(offset, kOxStreamSeekFromStart) && reader.ParsePacket(info.get());
  return isRead ? info : OxSharedPtr<StreamFileSequenceInfo>();
}

unsigned int MXFStream::ReadFromSystemPack(long long valueOffset, unsigned char* buffer, unsigned int size) {
  KLVPacket packet;
  if (ReadElementHead(0, kSystemItem, packet) == PacketHead::Failed) return kStatusUnreadable;
  if (packet.PacketType() != kKeySystemMetadataPack) return kStatusOK;
  std::array<unsigned char, SystemMetadataPack::kDateSize> bytes{};
  const bool isRead = buffer != nullptr && m_reader->SetOffset(valueOffset, kOxStreamSeekFromCurrent) &&
                      m_reader->GetBytes(bytes.data(), size);
  if (!isRead) return kStatusUnreadable;
  std::copy_n(bytes.begin(), size, buffer);
  return kStatusOK;
}

unsigned int MXFStream::GetUserBit(unsigned char* bits) {
  const OxAutoLock guard(m_reader.get());
  return ReadFromSystemPack(kUserBitsOffset, bits, kUserBitsSize);
}

unsigned int MXFStream::GetPackageCreationDate(unsigned char* date) {
  const OxAutoLock guard(m_reader.get());
  return ReadFromSystemPack(SystemMetadataPack::kCreationDateOffset, date, SystemMetadataPack::kDateSize);
}

unsigned int MXFStream::GetAudioChannel(unsigned char* count) {
  const OxAutoLock guard(m_reader.get());
  KLVPacket packet;
  if (count == nullptr || ReadElementHead(0, kFirstSound, packet) == PacketHead::Failed) return kStatusUnreadable;
  if (packet.PacketType() != kKeySoundEssence) return kStatusOK;
  *count = packet.key().ValueAtIndex(kElementCountByte);
  return kStatusOK;
}

unsigned int MXFStream::GetImageStabilizer(OxSharedPtr<OxNumber>* state) {
  const OxAutoLock guard(m_reader.get());
  unsigned long long offset = 0;
  if (state == nullptr || GetEssenceOffset(0, kSystemItem, offset) != kStatusOK) return kStatusUnreadable;
  KLVPacket packet;
  // The set is looked for at a fixed distance, however long the system metadata pack says it is.
  if (!MoveTo(SaturatingSum(offset, kSystemPackSize)) || !m_reader->ParseKeyAndLength(&packet))
    return kStatusUnreadable;
  MxfUUID key;
  if (packet.PacketType() != kKeySystemItemLocalSet || !ReadCameraMetadataKey(key)) return kStatusUnreadable;
  if (!FBC_UL_BodyPartition_Private_Camera_Metadata || key != *FBC_UL_BodyPartition_Private_Camera_Metadata) {
    return kStatusOK;
  }
  unsigned int length = 0;
  if (!m_reader->GetBER(&length)) return kStatusUnreadable;
  if (length == 0) return kStatusOK;
  unsigned char recordCount = 0;
  if (!m_reader->GetUInt8(&recordCount)) return kStatusUnreadable;
  unsigned char value = 0;
  const unsigned long long failedReads = FailedReads();
  const bool isFound = FindStabilizerRecord(recordCount, value);
  if (FailedReads() != failedReads) return kStatusUnreadable;
  if (isFound) *state = OxNumber::Create<unsigned char>(value >> 4 & 3);
  return kStatusOK;
}

// The key of the camera item; zeros when the set holds another item there. False when it cannot be read.
bool MXFStream::ReadCameraMetadataKey(MxfUUID& key) {
  unsigned char tag = 0;
  if (!m_reader->SetOffset(kCameraItemOffset, kOxStreamSeekFromCurrent) || !m_reader->GetUInt8(&tag)) return false;
  if (tag != kCameraItemTag) return true;
  unsigned short length = 0;
  if (!m_reader->GetUInt16(&length)) return false;
  return length == 0 || m_reader->GetUUID(&key);
}

// The first data byte of the stabilizer's record. A record that cannot be read is passed over.
bool MXFStream::FindStabilizerRecord(unsigned int recordCount, unsigned char& value) {
  for (unsigned int i = 0; i < recordCount; ++i) {
    unsigned char record[kCameraRecordSize] = {};
    if (!m_reader->GetBytes(record, kCameraRecordSize) || record[0] != kStabilizerRecord) continue;
    value = record[1];
    return true;
  }
  return false;
}

unsigned int MXFStream::GetVideoBitRate(OxSharedPtr<OxNumber>* rate) const {
  if (rate == nullptr || m_headerMetadata->TrackCount(0) < kFewestTracks) return kStatusUnreadable;
  const OxSharedPtr<STTrack> track = m_headerMetadata->TrackForIndex(kPictureTrack, 0);
  if (!track) return kStatusUnreadable;
  const OxSharedPtr<OxArray> subDescriptors = track->ValueForTag(kSubDescriptorsTag, 0);
  const unsigned long count = subDescriptors ? subDescriptors->Count() : 0;
  unsigned int status = kStatusUnreadable;
  for (unsigned long i = 0; i < count; ++i) {  // the last one that tells it wins
    const OxSharedPtr<STMetadataSets> set = m_headerMetadata->MetadataForKey(subDescriptors->ObjectAtIndex(i));
    unsigned int value = 0;
    if (!set || !GetValue(set->ValueForTag(kBitRateTag), value)) continue;
    *rate = OxNumber::Create<unsigned int>(value);
    status = kStatusOK;
  }
  return status;
}

std::vector<unsigned char> MXFStream::GetDataItem(unsigned int editUnit) {
  // The data element comes last; without tracks the number wraps to one that no index has.
  const unsigned int element = m_headerMetadata->TrackCount(0) - 1;
  const OxAutoLock guard(m_reader.get());
  KLVPacket packet;
  if (ReadElementHead(editUnit, element, packet) != PacketHead::Read || packet.PacketType() != kKeyEssence) return {};
  try {
    // The packet lies in the file, so its length is backed by it.
    std::vector<unsigned char> data(packet.Length());
    const bool isRead = m_reader->GetBytes(data.data(), static_cast<unsigned int>(data.size()));
    return isRead ? data : std::vector<unsigned char>();
  } catch (const std::bad_alloc&) {
    return {};
  }
}

// --- Essence ---

// Asks the index that is loaded, then once more after loading the index of the edit unit.
template <class Ask>
bool MXFStream::AskIndex(unsigned int editUnit, Ask ask) {
  const OxAutoLock guard(m_reader.get());
  if (editUnit >= m_duration) return false;
  return ask() || (ReadIndexTable(editUnit) == kStatusOK && ask());
}

unsigned int MXFStream::GetEssenceOffset(unsigned int editUnit, unsigned int element, unsigned long long& offset) {
  const bool isFound = AskIndex(editUnit, [&] { return m_bodyPartitions->GetStreamOffset(editUnit, element, offset); });
  return isFound ? kStatusOK : kStatusUnreadable;
}

_OxRange MXFStream::RangeEssenceData(unsigned int editUnit, unsigned int element) {
  const OxAutoLock guard(m_reader.get());
  if (ReadElementHead(editUnit, element, *m_packet) != PacketHead::Read) return kNoRange;
  if (KeyKind(m_packet->PacketType()) != kKeyEssence) return kNoRange;
  return {m_packet->ValueOffset(), m_packet->Length()};
}

unsigned int MXFStream::ReadEssenceData(unsigned int editUnit, unsigned int element, unsigned char* buffer,
                                        unsigned int bufferSize) {
  const OxAutoLock guard(m_reader.get());
  if (buffer == nullptr || ReadElementHead(editUnit, element, *m_packet) != PacketHead::Read) return 0;
  const unsigned int type = m_packet->PacketType();
  if (type != kKeySystemMetadataPack && KeyKind(type) != kKeyEssence) return 0;
  const unsigned int count = ReadPacketValue(buffer, bufferSize);
  if (KeyKind(type) == kKeyEssence || count < m_packet->Length()) return count;
  // The system item goes on in a second packet.
  if (m_reader->ReadKeyAndLength(m_packet.get()) != PacketHead::Read) return count;
  if (m_packet->PacketType() != kKeySystemItemLocalSet) return count;
  return count + ReadPacketValue(buffer + count, bufferSize - count);
}

// Copies the scratch packet's value, at which the reader stands; 0 when it does not fit or cannot be read.
unsigned int MXFStream::ReadPacketValue(unsigned char* buffer, unsigned int bufferSize) {
  if (m_packet->Length() > bufferSize) return 0;
  const auto length = static_cast<unsigned int>(m_packet->Length());
  return m_reader->GetBytes(buffer, length) ? length : 0;
}

// --- Index ---

bool MXFStream::GetFlagsAtIndex(unsigned int editUnit, unsigned char& flags) {
  return AskIndex(editUnit, [&] { return m_bodyPartitions->GetFlags(editUnit, flags); });
}

bool MXFStream::GetKeyOffsetAtIndex(unsigned int editUnit, signed char& offset) {
  return AskIndex(editUnit, [&] { return m_bodyPartitions->GetKeyFrameOffset(editUnit, offset); });
}

bool MXFStream::GetTemporalOffsetAtIndex(unsigned int editUnit, signed char& offset) {
  return AskIndex(editUnit, [&] { return m_bodyPartitions->GetTemporalOffset(editUnit, offset); });
}

bool MXFStream::GetEditUnitInfo(unsigned int editUnit, signed char& temporalOffset, signed char& keyFrameOffset,
                                unsigned char& flags) {
  return AskIndex(editUnit,
                  [&] { return m_bodyPartitions->GetEditUnitInfo(editUnit, temporalOffset, keyFrameOffset, flags); });
}

unsigned int MXFStream::ReadIndexTable(unsigned int editUnit) {
  const OxAutoLock guard(m_reader.get());
  return isIndexInHeader() ? ReadIndexTabelFromHeaderPartition(editUnit) : ReadIndexTableFromPartition(editUnit);
}

bool MXFStream::isIndexInHeader() const {
  const OxSharedPtr<PartitionPack> header = m_headerPartitionPack;
  return header && header->MajorVersion() == 1 && header->MinorVersion() == 3;
}

unsigned int MXFStream::ReadIndexTabelFromHeaderPartition(unsigned int editUnit) {
  const OxAutoLock guard(m_reader.get());
  if (!EnsureBodyPartitionData(0) || !m_headerPartitionPack) return kStatusUnreadable;
  // Read anew, into a pack of its own: others may be reading the clip's.
  const OxSharedPtr<PartitionPack> header = PartitionPackAt(m_headerPartitionPack->ThisPartition());
  if (!header || header->IndexByteCount() == 0) return kStatusUnreadable;
  const IndexArea area = IndexAreaOf(*header);
  // Each round attaches a segment under a number that was free: 0, then 1, then the one that should hold the unit.
  unsigned int number = 0;
  unsigned long long position = area.begin;
  OxSharedPtr<IndexTableSegment> segment;
  do {
    if (!PlaceHeaderSegment(editUnit, area, position, number)) return kStatusUnreadable;
    segment = AttachHeaderSegment(area, position, number);
    if (!segment) return kStatusUnreadable;
    position = area.end;
  } while (!segment->isContainIndex(editUnit));
  return kStatusOK;
}

// Where to look for the segment of an edit unit, and its number. All segments are taken to be as long, in bytes and in
// edit units, as the first; the length in bytes is known once the second has been found. False when there is no
// telling.
bool MXFStream::PlaceHeaderSegment(unsigned int editUnit, const IndexArea& area, unsigned long long& position,
                                   unsigned int& number) const {
  OxSharedPtr<IndexTableSegment> first;
  if (!m_bodyPartitions->IndexTableSegmentAtIndex(0, 0, first)) return true;
  const unsigned long long byteCount = m_bodyPartitions->IndexTableSegmentByteCount();
  if (byteCount == 0) {
    position = first->NextOffset();
    number = 1;
    return true;
  }
  if (first->IndexDuration() <= 0) return false;
  const auto wanted = static_cast<unsigned int>(editUnit / first->IndexDuration());
  if (wanted == 0) return true;
  unsigned long long distance = 0;
  if (__builtin_mul_overflow(static_cast<unsigned long long>(wanted), byteCount, &distance)) return false;
  position = SaturatingSum(area.begin, distance);
  number = wanted;
  return true;
}

// The first segment from `position` on that can be attached to body partition 0 under `number`; empty when the area
// holds none.
OxSharedPtr<IndexTableSegment> MXFStream::AttachHeaderSegment(const IndexArea& area, unsigned long long position,
                                                              unsigned int number) {
  if (position < area.begin) return {};
  OxSharedPtr<IndexTableSegment> attached;
  if (m_bodyPartitions->IndexTableSegmentAtIndex(0, number, attached)) return {};  // every segment would be refused
  const unsigned long long failedReads = FailedReads();
  while (OxSharedPtr<IndexTableSegment> segment = NextIndexSegment(position, area.end)) {
    if (FailedReads() != failedReads) break;  // the segment that belongs here may have been passed over
    if (m_bodyPartitions->SetIndexTableSegment(0, number, segment) != kStatusOK) continue;
    // Only where it was attached: a later segment must not pass for the second one.
    if (number == 1) m_bodyPartitions->SetIndexTableSegmentByteCount(segment->Offset() - area.begin);
    return segment;
  }
  return {};
}

unsigned int MXFStream::ReadIndexTableFromPartition(unsigned int editUnit) {
  const OxAutoLock guard(m_reader.get());
  const long long partitions = m_bodyPartitions->Count();
  const long long duration = m_duration;
  if (partitions == 0 || duration <= 0) return kStatusUnreadable;
  const long long unitsEach = duration / partitions + (duration % partitions != 0 ? 1 : 0);
  auto index = static_cast<unsigned int>(editUnit / unitsEach);
  for (unsigned int step = 0; step < kMostIndexSteps; ++step) {
    const unsigned int status = ReadIndexTableAtPartition(index);
    if (status != kStatusOK) return status;
    OxSharedPtr<IndexTableSegment> first;
    if (!m_bodyPartitions->IndexTableSegmentAtIndex(index, 0, first)) return kStatusUnreadable;
    if (first->IndexStartPosition() == BodyPartitionArray::kNoEditUnit) return kStatusUnreadable;
    if (first->isContainIndex(editUnit)) return kStatusOK;
    index += first->IndexStartPosition() > editUnit ? -1u : 1u;  // below 0 is a partition that does not exist
  }
  return kStatusOK;
}

// Whether reading the partition's index again could only give what is there already.
bool MXFStream::isIndexLoaded(unsigned int index) const {
  unsigned char flag = 0;
  OxSharedPtr<IndexTableSegment> first;
  return !isIndexInHeader() && m_bodyPartitions->InfoFlagAtIndex(index, flag) &&
         (flag & kBodyPartitionHasData) == kBodyPartitionHasData &&
         m_bodyPartitions->IndexTableSegmentAtIndex(index, 0, first);
}

unsigned int MXFStream::ReadIndexTableAtPartition(unsigned int index) {
  const OxAutoLock guard(m_reader.get());
  if (isIndexLoaded(index)) return kStatusOK;
  unsigned long long offset = 0;
  if (!EnsureBodyPartitionData(index) || !IndexPartitionOffset(index, offset)) return kStatusUnreadable;
  const OxSharedPtr<PartitionPack> pack = PartitionPackAt(offset);
  if (!pack) return kStatusUnreadable;
  KeepBodyPartitionData(index + 1, pack);
  OxSharedPtr<IndexTableSegment> last;  // a later segment supersedes the ones before it
  const bool isRead =
      VisitIndexSegments(*pack, [&last](OxSharedPtr<IndexTableSegment> segment) { last = std::move(segment); });
  if (!isRead || !last) return kStatusUnreadable;
  static_cast<void>(m_bodyPartitions->SetIndexTableSegment(index, 0, last));  // one that is there stays
  return kStatusOK;
}

// The index of a body partition lies in the partition that follows it.
bool MXFStream::IndexPartitionOffset(unsigned int index, unsigned long long& offset) const {
  if (m_bodyPartitions->FileOffsetAtIndex(index + 1, offset)) return true;
  if (m_headerPartitionPack) offset = m_headerPartitionPack->FooterPartition();
  return static_cast<bool>(m_headerPartitionPack);
}

bool MXFStream::EnsureBodyPartitionData(unsigned int index) {
  unsigned char flag = 0;
  if (!m_bodyPartitions->InfoFlagAtIndex(index, flag)) return false;
  return (flag & kBodyPartitionHasData) == kBodyPartitionHasData || ReadBodyPartitionInfo(index) == kStatusOK;
}

// Takes up the pack of the partition that follows while it is at hand, instead of reading it again when its turn comes.
void MXFStream::KeepBodyPartitionData(unsigned int index, const OxSharedPtr<PartitionPack>& pack) {
  unsigned char flag = 0;
  if (!m_bodyPartitions->InfoFlagAtIndex(index, flag) || (flag & kBodyPartitionHasData) != 0) return;
  static_cast<void>(m_bodyPartitions->SetBodyPartitionData(index, pack));  // one that lies elsewhere fails in its turn
}

unsigned int MXFStream::ReadBodyPartitionInfo(unsigned int index) {
  const OxAutoLock guard(m_reader.get());
  unsigned long long offset = 0;
  if (!m_bodyPartitions->FileOffsetAtIndex(index, offset)) return kStatusUnreadable;
  const OxSharedPtr<PartitionPack> pack = PartitionPackAt(offset);
  return pack ? m_bodyPartitions->SetBodyPartitionData(index, pack) : kStatusUnreadable;
}

OxSharedPtr<OxArray> MXFStream::GetIndexFromPartition(unsigned long long fileOffset) {
  const OxAutoLock guard(m_reader.get());
  const OxSharedPtr<PartitionPack> pack = PartitionPackAt(fileOffset);
  if (!pack) return {};
  OxSharedPtr<OxMutableArray> segments(new OxMutableArray);
  const bool isRead =
      VisitIndexSegments(*pack, [&](OxSharedPtr<IndexTableSegment> segment) { segments->AddObject(segment); });
  return isRead ? OxSharedPtr<OxArray>(segments) : OxSharedPtr<OxArray>();
}

// Shows each index table segment of a partition; false when the disk failed on the way.
template <class Visit>
bool MXFStream::VisitIndexSegments(const PartitionPack& pack, Visit visit) {
  if (pack.IndexByteCount() == 0) return true;
  const IndexArea area = IndexAreaOf(pack);
  const unsigned long long failedReads = FailedReads();
  unsigned long long position = area.begin;
  while (OxSharedPtr<IndexTableSegment> segment = NextIndexSegment(position, area.end)) visit(segment);
  return FailedReads() == failedReads;
}

MXFStream::IndexArea MXFStream::IndexAreaOf(const PartitionPack& pack) {
  return {pack.IndexOffset(), SaturatingSum(pack.IndexOffset(), pack.IndexByteCount())};
}

// The next segment from `position` on that can be imported; `position` is then behind it. Empty at the end of the area
// and where no packet can be read. A partition or random index pack ends the area too, whatever its byte count says:
// neither can lie inside one.
OxSharedPtr<IndexTableSegment> MXFStream::NextIndexSegment(unsigned long long& position, unsigned long long end) {
  while (position < end && MoveTo(position)) {
    OxSharedPtr<IndexTableSegment> segment(new IndexTableSegment);
    if (m_reader->ReadKeyAndLength(segment.get()) != PacketHead::Read) break;
    const unsigned int type = segment->PacketType();
    if (type == kKeyNotSMPTE || isPartitionOrIndexPack(type)) break;
    position = segment->NextOffset();
    if (type == kKeyIndexTableSegment && m_reader->ParsePacketValue(segment.get())) return segment;
  }
  return {};
}
