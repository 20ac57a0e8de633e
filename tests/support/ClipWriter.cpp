#include "ClipWriter.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace clipwriter {
namespace {

using u8 = std::uint8_t;
using u32 = std::uint32_t;
using u64 = std::uint64_t;

// Labels: the first eight and the last eight bytes.
const Label kPrimerPack = MakeLabel(0x060E2B3402050101, 0x0D01020101050100);
const Label kRandomIndexPack = MakeLabel(0x060E2B3402050101, 0x0D01020101110100);
const Label kIndexSegment = MakeLabel(0x060E2B3402530101, 0x0D01020101100100);
const Label kSystemPack = MakeLabel(0x060E2B3402050101, 0x0D01030104010100);
const Label kPackageSet = MakeLabel(0x060E2B3402430101, 0x0D01030104010200);
const Label kSequenceInfo = MakeLabel(0x060E2B340101010D, 0x0E15000000010000);
const Label kCameraMetadata = MakeLabel(0x060E2B340101010D, 0x0E15000100010000);
const Label kOperationalPattern1a = MakeLabel(0x060E2B3404010101, 0x0D01020101010900);
const Label kContainerMpeg = MakeLabel(0x060E2B3404010102, 0x0D01030102046001);
const Label kContainerAes = MakeLabel(0x060E2B3404010101, 0x0D01030102060300);
const Label kContainerWave = MakeLabel(0x060E2B3404010101, 0x0D01030102060100);
const Label kContainerData = MakeLabel(0x060E2B3404010109, 0x0D010301020E0000);
const Label kContainerMultiple = MakeLabel(0x060E2B3404010103, 0x0D010301027F0100);

// The tags that a reader can't know by heart, and one that it does: local tag, byte 7 and the last eight bytes of the
// label 06.0E.2B.34.01.01.01.xx. The tags of SMPTE ST 377-1 are not repeated here.
constexpr struct {
  unsigned tag, version;
  u64 low;
} kPrimer[] = {
    {0x3C0A, 0x01, 0x0101150200000000}, {0x8007, 0x0E, 0x0401060601160000}, {0x8080, 0x09, 0x0601010406100000}};

// Bytes and the fields among them that a reader follows.
struct Piece {
  Bytes data;
  std::vector<Field> fields;

  Piece& Number(u64 value, unsigned width) {  // big-endian
    for (unsigned i = width; i-- > 0;) data.push_back(static_cast<u8>(value >> (8 * i)));
    return *this;
  }
  Piece& Number(u64 value, unsigned width, FieldKind kind) {
    fields.push_back({data.size(), width, kind, "", 0});
    return Number(value, width);
  }
  template <typename Range>
  Piece& Raw(const Range& range) {
    data.insert(data.end(), range.begin(), range.end());
    return *this;
  }
  template <typename Range>
  Piece& Link(const Range& range) {
    fields.push_back({data.size(), static_cast<unsigned>(range.size()), FieldKind::Link, "", 0});
    return Raw(range);
  }
  Piece& Zeros(u64 count) {
    data.resize(data.size() + static_cast<std::size_t>(count));
    return *this;
  }
  Piece& Append(const Piece& piece) {
    for (Field field : piece.fields) {
      field.offset += data.size();
      fields.push_back(field);
    }
    return Raw(piece.data);
  }
  Piece& KeyAndLength(const Label& key, u64 length) {
    const unsigned width = length < 1u << 24 ? 3 : 4;
    return Raw(key).Number(0x80 + width, 1, FieldKind::Length).Number(length, width, FieldKind::Length);
  }
  // The fields of a packet bear its name.
  Piece& Packet(const Label& key, const Piece& value, const char* name) {
    const std::size_t first = fields.size();
    KeyAndLength(key, value.data.size()).Append(value);
    for (std::size_t i = first; i < fields.size(); ++i) fields[i].name = name;
    return *this;
  }
};

Piece Batch(u64 count, u64 size) {
  return Piece().Number(count, 4, FieldKind::Count).Number(size, 4, FieldKind::Length);
}

struct Range {
  u64 first, count;
};

// The frames of a closed GOP in coded order: one I, then groups of a P and the B frames that it closes.
enum Frame { kI, kP, kB };
constexpr Frame kFrames[] = {kI, kP, kB};

// Everything about the content packages that follows from the options.
struct Model {
  struct Item {
    ElementKind kind;
    u32 trackNumber;
    Label key;                // ends in the track number
    std::array<u32, 3> size;  // of the value, by type of frame
  };

  explicit Model(const ClipOptions& options) : o(options) {
    if (o.systemItem) {
      const u64 setSize = o.packageMetadata ? 20 + PackageSetValue().size() : 0;
      items.push_back({ElementKind::System, 0, kSystemPack, {57, 57, 57}});
      for (auto& offsets : start) offsets.push_back(Filled(20 + 57 + setSize));
    }
    picture = Count();
    Add(ElementKind::Picture, 0x15010500, {o.intraBytes, o.predictedBytes, o.bidirectionalBytes});
    const u32 sound = 0x16000300 + (o.soundElements << 16);
    for (unsigned i = 0; i < o.soundElements; ++i)
      Add(ElementKind::Sound, sound + i, {o.soundBytes, o.soundBytes, o.soundBytes});
    if (o.dataBytes > 0) Add(ElementKind::Data, 0x17010201, {o.dataBytes, o.dataBytes, o.dataBytes});
  }

  void Add(ElementKind kind, u32 number, const std::array<u32, 3>& size) {
    items.push_back({kind, number, MakeLabel(0x060E2B3401020101, 0x0D01030100000000 | number), size});
    for (const Frame f : kFrames) start[f].push_back(start[f].back() + Filled(HeadSize(size[f]) + size[f]));
  }

  unsigned Count() const { return static_cast<unsigned>(items.size()); }
  static unsigned HeadSize(u64 length) { return length < 1u << 24 ? 16 + 4 : 16 + 5; }
  u64 FillSize(u64 size) const {  // a fill item takes at least 20 bytes
    u64 fill = (o.kagSize - size % o.kagSize) % o.kagSize;
    while (fill != 0 && fill < 20) fill += o.kagSize;
    return fill;
  }
  u64 Filled(u64 size) const { return size + FillSize(size); }
  Label FillKey() const { return MakeLabel(0x060E2B3401010100 + (o.minorVersion == 2 ? 1 : 2), 0x0301021001000000); }
  void Fill(Piece& piece) const {
    const u64 fill = FillSize(piece.data.size());
    if (fill > 0) piece.KeyAndLength(FillKey(), fill - 20).Zeros(fill - 20);
  }

  Frame FrameAt(u64 unit) const {
    const u64 position = unit % o.gopLength;
    return position == 0 ? kI : (position - 1) % o.groupLength == 0 ? kP : kB;
  }
  // Content packages have three sizes, so all units before are a matter of counting frames of each type.
  u64 StreamOffset(u64 unit) const { return unit / o.gopLength * GopPart(o.gopLength) + GopPart(unit % o.gopLength); }
  u64 GopPart(u64 frames) const {
    if (frames == 0) return 0;
    const u64 predicted = (frames - 1 + o.groupLength - 1) / o.groupLength;
    return start[kI].back() + predicted * start[kP].back() + (frames - 1 - predicted) * start[kB].back();
  }
  // In display order B frames come before the P frame that is stored in front of them.
  int TemporalOffset(u64 unit, u64 units) const {
    const u64 position = unit % o.gopLength;
    if (position == 0) return 0;
    const u64 gop = std::min<u64>(o.gopLength, units - (unit - position));
    const u64 inGroup = (position - 1) % o.groupLength;
    const u64 group = std::min<u64>(o.groupLength, gop - (position - inGroup));
    return inGroup + 1 == group ? 1 - static_cast<int>(group) : 1;
  }
  IndexEntry Entry(u64 unit, u64 units) const {
    const unsigned flags[] = {0xC0, 0x22, 0x33};
    return {TemporalOffset(unit, units), -static_cast<int>(unit % o.gopLength), flags[FrameAt(unit)],
            StreamOffset(unit)};
  }

  u32 Base() const { return (o.rateNumerator + o.rateDenominator - 1) / o.rateDenominator; }
  // Frames (with the drop frame flag), seconds, minutes, hours, as BCD (SMPTE ST 331).
  std::array<u8, 4> Timecode(u64 unit) const {
    const u64 base = Base();
    u64 frames = o.startTimecode + unit;
    if (o.dropFrame) {  // 2 in 30 numbers left out each minute but the tenth
      const u64 drop = base / 15, minute = base * 60 - drop, tenMinutes = minute * 10 + drop;
      const u64 rest = frames % tenMinutes;
      frames += frames / tenMinutes * drop * 9 + (rest < drop ? 0 : (rest - drop) / minute * drop);
    }
    const auto bcd = [](u64 number) { return static_cast<u8>(number / 10 * 16 + number % 10); };
    return {static_cast<u8>(bcd(frames % base) | (o.dropFrame ? 0x40 : 0)), bcd(frames / base % 60),
            bcd(frames / base / 60 % 60), bcd(frames / base / 3600 % 24)};
  }
  // Bitmap, rate, type, channel, count, label, creation date, user date (timecode, user bits): SMPTE ST 385.
  Bytes SystemPackValue(u64 unit) const {
    Piece value;
    value.Number(o.packageMetadata ? 0x5C : 0x58, 1).Number(0x04, 1).Number(0, 1).Number(0, 2).Number(unit & 0xFFFF, 2);
    value.Raw(kContainerMultiple).Number(0x81, 1).Raw(o.creationDate);
    return value.Number(0x81, 1).Raw(Timecode(unit)).Raw(o.userBits).Zeros(8).data;
  }
  // 1-byte tags, 2-byte lengths: an extended UMID (67 bytes in all), then the camera's own item.
  Bytes PackageSetValue() const {
    Piece value;
    value.Number(0x83, 1).Number(64, 2).Number(0x060A2B3401010105, 8).Number(0x01010F2033000000, 8).Zeros(48);
    if (!o.cameraMetadata) return value.data;
    const u64 recordBytes = 1 + 5 * o.cameraRecords.size();
    value.Number(0x88, 1).Number(16 + 4 + recordBytes, 2).Raw(kCameraMetadata);
    value.Number(0x83, 1).Number(recordBytes, 3).Number(o.cameraRecords.size(), 1);
    for (const auto& record : o.cameraRecords) value.Raw(record);
    return value.data;
  }

  const ClipOptions& o;
  unsigned picture = 0;  // index of the picture element
  std::vector<Item> items;
  std::vector<u64> start[3] = {{0}, {0}, {0}};  // of each element in the content package; at last the package's size
};

Label Instance(unsigned kind, unsigned number) {
  return MakeLabel(0xC11DC11D00004000 | kind, 0x8000000000000000 | number);
}
constexpr unsigned kMaterialPackage = 0, kSourcePackage = 1;
Bytes Umid(unsigned package) {
  return Piece().Number(0x060A2B3401010105, 8).Number(0x01010F2013000000, 8).Raw(Instance(0xFFFF, package)).data;
}

// A set of 2-byte tags and lengths, named after its class.
class Set {
 public:
  Set(const Label& key, const Label& instance, const char* name) : m_key(key), m_name(name) { Uid(0x3C0A, instance); }

  Set& Number(unsigned tag, u64 value, unsigned width) { return Item(tag, Piece().Number(value, width)); }
  Set& Number(unsigned tag, u64 value, unsigned width, FieldKind kind) {
    return Item(tag, Piece().Number(value, width, kind));
  }
  Set& Ratio(unsigned tag, u64 numerator, u64 denominator) { return Number(tag, numerator << 32 | denominator, 8); }
  Set& Raw(unsigned tag, const Label& value) { return Item(tag, Piece().Raw(value)); }
  template <typename Range>
  Set& Uid(unsigned tag, const Range& value) {
    return Item(tag, Piece().Link(value));
  }
  Set& Uids(unsigned tag, const std::vector<Label>& uids) {
    Piece batch = Batch(uids.size(), 16);
    for (const Label& uid : uids) batch.Link(uid);
    return Item(tag, batch);
  }
  Set& Text(unsigned tag, const std::string& ascii) {
    Piece text;
    for (const char c : ascii) text.Number(static_cast<u8>(c), 2);
    return Item(tag, text.Number(0, 2));
  }
  Set& Item(unsigned tag, const Piece& value) {
    const std::size_t first = m_value.fields.size();
    m_value.Number(tag, 2, FieldKind::Tag).Number(value.data.size(), 2, FieldKind::Length).Append(value);
    for (std::size_t i = first; i < m_value.fields.size(); ++i) m_value.fields[i].tag = tag;
    return *this;
  }
  Piece Packet() const { return Piece().Packet(m_key, m_value, m_name); }

 private:
  Label m_key;
  const char* m_name;
  Piece m_value;
};

// The segments over a range, filled up to the KAG.
class IndexArea {
 public:
  IndexArea(const Model& model, u64 units) : m_model(model), o(model.o), m_units(units) {}

  Piece Write(Range range) const {
    const u64 most = (0xFFFF - 8) / EntrySize();
    const u64 step = o.segmentUnits == 0 ? most : std::min<u64>(most, o.segmentUnits);
    Piece area;
    for (unsigned i = 0; i < o.staleSegments; ++i)
      area.Append(Segment({range.first, std::min(step, (range.count + 1) / 2)}));
    for (u64 done = 0; done < range.count; done += step) {
      area.Append(Segment({range.first + done, std::min(step, range.count - done)}));
    }
    m_model.Fill(area);
    return area;
  }

 private:
  // The first element of slice 1 is the one behind the picture, and so on.
  unsigned SliceStart(unsigned slice) const {
    return slice == 0 ? 0 : std::min(m_model.picture + slice, m_model.Count());
  }
  unsigned SliceOf(unsigned i) const {
    return i <= m_model.picture ? 0 : std::min<unsigned>(i - m_model.picture, o.slices);
  }
  u64 EntrySize() const { return 11 + 4u * o.slices; }

  Piece Segment(Range range) const {
    Set set(kIndexSegment, Instance(0x10, static_cast<unsigned>(range.first)), "IndexTableSegment");
    set.Ratio(0x3F0B, o.rateNumerator, o.rateDenominator);
    set.Number(0x3F0C, range.first, 8, FieldKind::Offset).Number(0x3F0D, range.count, 8, FieldKind::Count);
    set.Number(0x3F05, 0, 4, FieldKind::Length).Number(0x3F06, o.indexSid, 4, FieldKind::Link);
    set.Number(0x3F07, o.bodySid, 4, FieldKind::Link).Number(0x3F08, o.slices, 1, FieldKind::Count);
    if (o.tag3F0E) set.Number(0x3F0E, *o.tag3F0E, 1, FieldKind::Count);
    Piece deltas = Batch(m_model.Count(), 6);
    for (unsigned i = 0; i < m_model.Count(); ++i) {
      const u64 delta = m_model.start[kI][i] - m_model.start[kI][SliceStart(SliceOf(i))];
      deltas.Number(i == m_model.picture ? 0xFF : 0, 1);  // -1: reordered
      deltas.Number(SliceOf(i), 1, FieldKind::Link);
      deltas.Number(delta, 4, FieldKind::Offset);
    }
    return set.Item(0x3F09, deltas).Item(0x3F0A, Entries(range)).Packet();
  }

  Piece Entries(Range range) const {
    Piece entries = Batch(range.count, EntrySize());
    for (u64 unit = range.first; unit < range.first + range.count; ++unit) {
      const IndexEntry entry = m_model.Entry(unit, m_units);
      entries.Number(static_cast<u8>(entry.temporalOffset), 1).Number(static_cast<u8>(entry.keyFrameOffset), 1);
      entries.Number(entry.flags, 1);
      if (o.recordFields) entries.fields.push_back({entries.data.size(), 8, FieldKind::Offset, "", 0});
      entries.Number(entry.streamOffset, 8);
      for (unsigned s = 1; s <= o.slices; ++s) {
        if (o.recordFields) entries.fields.push_back({entries.data.size(), 4, FieldKind::Offset, "", 0});
        entries.Number(m_model.start[m_model.FrameAt(unit)][SliceStart(s)], 4);
      }
    }
    return entries;
  }

  const Model& m_model;
  const ClipOptions& o;
  u64 m_units;
};

std::vector<Label> Containers(const ClipOptions& o) {
  std::vector<Label> labels = {kContainerMpeg, o.aesSound ? kContainerAes : kContainerWave};
  if (o.dataBytes > 0) labels.push_back(kContainerData);
  return labels;
}

class HeaderMetadata {
 public:
  HeaderMetadata(const Model& model, u64 units)
      : m_model(model),
        o(model.o),
        m_duration(static_cast<u64>(o.duration.value_or(static_cast<std::int64_t>(units)))) {
    m_tracks.push_back({1, 0, 0x0103020101000000, ElementKind::System});  // the timecode
    for (const Model::Item& item : model.items) {
      if (item.kind == ElementKind::System) continue;
      const u64 definition = 0x0103020200000000 + (u64(item.kind) << 24);  // picture 1, sound 2, data 3
      m_tracks.push_back({static_cast<u32>(m_tracks.size()) + 1, item.trackNumber, definition, item.kind});
    }
  }

  Piece Write() {
    if (o.primer) m_out.Packet(kPrimerPack, PrimerValue(), "PrimerPack");
    m_model.Fill(m_out);
    Root();
    Package(kMaterialPackage, Make(0x36, 0, "MaterialPackage"));
    Package(kSourcePackage, Make(0x37, 0, "SourcePackage").Uid(0x4701, Descriptor(o.multipleDescriptor ? 0 : 1)));
    for (unsigned i = 0; i < m_tracks.size(); ++i) {
      if (i == 0 ? o.multipleDescriptor : o.multipleDescriptor || i == 1) AddDescriptor(i);
    }
    if (o.bitRate > 0) Add(Make(0x6E, 0, "SubDescriptor").Number(0x8007, o.bitRate, 4));
    for (unsigned i = 0; i < o.crowd; ++i) AddToCrowd(i);
    if (o.sequenceInfo) {
      Set info(kSequenceInfo, Instance(0x40, 0), "StreamFileSequenceInfo");
      info.Uid(0x4401, Umid(kSourcePackage)).Number(0x1501, o.startTimecode, 8);
      Add(info.Number(0x1201, 0, 8, FieldKind::Offset));
    }
    m_model.Fill(m_out);
    return std::move(m_out);
  }

 private:
  struct Track {
    u32 id, number;
    u64 definition;
    ElementKind kind;
  };

  static Set Make(unsigned kind, unsigned number, const char* name) {
    return {MakeLabel(0x060E2B3402530101, 0x0D01010101010000 | kind << 8), Instance(kind, number), name};
  }
  void Add(const Set& set) { m_out.Append(set.Packet()); }
  static unsigned MpegTag(unsigned property) { return 0xFFFF - property; }
  static std::vector<Label> Instances(unsigned kind, unsigned first, std::size_t count) {
    std::vector<Label> uids;
    for (unsigned i = 0; i < count; ++i) uids.push_back(Instance(kind, first + i));
    return uids;
  }

  Piece PrimerValue() const {
    const unsigned properties = o.mpegProperties ? 10 : 0;
    Piece value = Batch(std::size(kPrimer) + properties, 18);
    const auto add = [&](unsigned tag, u64 version, u64 low) {
      value.Number(tag, 2, FieldKind::Tag).Raw(MakeLabel(0x060E2B3401010100 | version, low));
    };
    for (const auto& row : kPrimer) add(row.tag, row.version, row.low);
    for (unsigned i = 0; i < properties; ++i) add(MpegTag(i), 5, 0x0401060201020000 + (u64{i} << 16));
    return value;
  }

  void Root() {
    Set preface = Make(0x2F, 0, "Preface");
    preface.Number(0x3B02, kDate, 8).Number(0x3B05, 0x0100u + o.minorVersion, 2).Raw(0x3B09, kOperationalPattern1a);
    preface.Uids(0x3B0A, Containers(o)).Uids(0x3B0B, {}).Uids(0x3B06, Instances(0x30, 0, o.identifications));
    Add(preface.Uid(0x3B03, Instance(0x18, 0)));
    for (unsigned i = 0; i < o.identifications; ++i) {
      Set set = Make(0x30, i, "Identification");
      set.Uid(0x3C09, Instance(0x130, i)).Text(0x3C01, "Example Company").Text(0x3C02, "Camera One");
      Add(set.Text(0x3C04, i == 0 ? "1.00" : "1.01").Raw(0x3C05, Instance(0x230, 0)).Number(0x3C06, kDate + i, 8));
    }
    std::vector<Label> packages = {Instance(0x36, 0)};
    for (const Label& source : Instances(0x37, 0, 1 + o.crowd)) packages.push_back(source);
    Add(Make(0x18, 0, "ContentStorage").Uids(0x1901, packages).Uids(0x1902, {Instance(0x23, 0)}));
    Set container = Make(0x23, 0, "EssenceContainerData");
    container.Uid(0x2701, Umid(kSourcePackage)).Number(0x3F06, o.indexSid, 4, FieldKind::Link);
    Add(container.Number(0x3F07, o.bodySid, 4, FieldKind::Link));
  }

  void Package(unsigned package, Set set) {
    const unsigned first = package * 0x100;
    set.Uid(0x4401, Umid(package)).Number(0x4405, kDate, 8).Number(0x4404, kDate, 8);
    Add(set.Uids(0x4403, Instances(0x3B, first, m_tracks.size())));
    for (unsigned i = 0; i < m_tracks.size(); ++i) AddTrack(package, first + i, m_tracks[i]);
  }

  void AddTrack(unsigned package, unsigned number, const Track& track) {
    const bool timecode = track.id == 1, source = package == kSourcePackage;
    const unsigned kind = timecode ? 0x14 : 0x11;
    Set set = Make(0x3B, number, "Track");
    set.Number(0x4801, track.id, 4, FieldKind::Link).Number(0x4804, source ? track.number : 0, 4);
    set.Ratio(0x4B01, o.rateNumerator, o.rateDenominator).Number(0x4B02, 0, 8, FieldKind::Offset);
    Add(set.Uid(0x4803, Instance(0x0F, number)));
    const auto component = [&](Set part) {
      return part.Raw(0x0201, MakeLabel(0x060E2B3404010101, track.definition))
          .Number(0x0202, m_duration, 8, FieldKind::Count);
    };
    std::vector<Label> components = {Instance(kind, number)};
    if (number == 0) {
      for (const Label& clip : Instances(0x11, kCrowd, o.crowd)) components.push_back(clip);
    }
    Add(component(Make(0x0F, number, "Sequence")).Uids(0x1001, components));
    Set last = component(Make(kind, number, timecode ? "TimecodeComponent" : "SourceClip"));
    if (timecode) {
      last.Number(0x1502, m_model.Base(), 2).Number(0x1503, o.dropFrame ? 1 : 0, 1).Number(0x1501, o.startTimecode, 8);
    } else {
      last.Number(0x1201, 0, 8, FieldKind::Offset).Uid(0x1101, source ? Bytes(32) : Umid(kSourcePackage));
      last.Number(0x1102, source ? 0 : track.id, 4, FieldKind::Link);
    }
    Add(last);
  }

  // One more source package, and a source clip of it; the clips name the packages from the last to the first.
  void AddToCrowd(unsigned i) {
    const unsigned package = kSourcePackage + 1 + i, named = kSourcePackage + o.crowd - i;
    Add(Make(0x37, 1 + i, "SourcePackage").Uid(0x4401, Umid(package)).Uids(0x4403, {}).Uid(0x4701, Descriptor(1)));
    Set clip = Make(0x11, kCrowd + i, "SourceClip");
    clip.Raw(0x0201, MakeLabel(0x060E2B3404010101, m_tracks[0].definition)).Number(0x0202, 0, 8, FieldKind::Count);
    Add(clip.Number(0x1201, 0, 8).Uid(0x1101, Umid(named)).Number(0x1102, m_tracks[1].id, 4, FieldKind::Link));
  }

  unsigned DescriptorKind(unsigned track) const {
    const unsigned pictures[] = {0x28, 0x29, 0x51};
    const unsigned kinds[] = {0x44, pictures[static_cast<int>(o.picture)], o.aesSound ? 0x47u : 0x48u, 0x5C};
    return kinds[static_cast<int>(m_tracks[track].kind)];
  }
  Label Descriptor(unsigned track) const { return Instance(DescriptorKind(track), track); }

  // That of the timecode track is the multiple descriptor.
  void AddDescriptor(unsigned track) {
    const ElementKind kind = m_tracks[track].kind;
    const Label containers[] = {kContainerMultiple, kContainerMpeg, o.aesSound ? kContainerAes : kContainerWave,
                                kContainerData};
    Set set = Make(DescriptorKind(track), track, "Descriptor");
    set.Ratio(0x3001, o.rateNumerator, o.rateDenominator).Raw(0x3004, containers[static_cast<int>(kind)]);
    if (track > 0) set.Number(0x3006, m_tracks[track].id, 4, FieldKind::Link);
    if (kind == ElementKind::Picture) Picture(set);
    if (kind == ElementKind::Sound) Sound(set);
    if (kind == ElementKind::System) {
      std::vector<Label> uids;
      for (unsigned i = 1; i < m_tracks.size(); ++i) uids.push_back(Descriptor(i));
      set.Uids(0x3F01, uids);
    }
    Add(set);
  }

  void Picture(Set& set) const {
    set.Raw(0x3201, o.pictureCoding).Raw(0x3210, o.captureGamma).Raw(0x3219, o.colorPrimaries);
    set.Ratio(0x320E, o.aspectNumerator, o.aspectDenominator).Number(0x320C, 0, 1).Number(0x3215, 4, 1);
    for (const unsigned tag : {0x3202u, 0x3204u, 0x3208u}) set.Number(tag, o.height, 4).Number(tag + 1, o.width, 4);
    set.Item(0x320D, Batch(2, 4).Number(42, 4).Number(0, 4));
    if (o.picture == PictureSet::RGBA) {
      set.Item(0x3401, Piece().Number(0x520A470A420A0000, 8).Zeros(8)).Number(0x3405, 0, 1);  // R, G, B of 10 bits
      set.Number(0x3406, 1023, 4).Number(0x3407, 0, 4);
    } else {
      set.Number(0x3301, 8, 4).Number(0x3302, 2, 4).Number(0x3308, 1, 4).Number(0x3303, 4, 1);
      set.Number(0x3304, 16, 4).Number(0x3305, 235, 4).Number(0x3306, 225, 4);
    }
    if (o.bitRate > 0) set.Uids(0x8080, {Instance(0x6E, 0)});
    if (!o.mpegProperties) return;
    const u32 values[] = {0, 1, 1, 0, 1, 0, o.gopLength, o.groupLength - 1, 0x82, o.bitRate};
    const unsigned widths[] = {1, 1, 1, 1, 1, 1, 2, 2, 1, 4};
    for (unsigned i = 0; i < std::size(values); ++i) set.Number(MpegTag(i), values[i], widths[i]);
  }

  void Sound(Set& set) const {
    set.Ratio(0x3D03, 48000, 1).Number(0x3D02, 1, 1).Number(0x3D07, 1, 4).Number(0x3D01, 24, 4).Number(0x3D04, 0, 1);
    set.Number(0x3D0A, 3, 2).Number(0x3D09, 144000, 4);
    if (!o.aesSound) return;
    set.Item(0x3D10, Batch(1, 1).Number(1, 1));
    set.Item(0x3D11, Batch(1, 24).Number(0x85, 1).Zeros(23));
  }

  static constexpr unsigned kCrowd = 0x10000;       // number of its first source clip
  static constexpr u64 kDate = 0x07EA0B1609301E19;  // 2026-11-22 09:48:30.100
  const Model& m_model;
  const ClipOptions& o;
  u64 m_duration;
  std::vector<Track> m_tracks;
  Piece m_out;
};

Piece PartitionPack(const Clip& clip, std::size_t number) {
  const ClipOptions& o = clip.options;
  const Partition& p = clip.partitions[number];
  const u64 kind = number == 0 ? 2 : number + 1 == clip.partitions.size() ? 4 : 3;
  const char* names[] = {"HeaderPartition", "BodyPartition", "FooterPartition"};
  Piece value;
  value.Number(1, 2).Number(o.minorVersion, 2).Number(o.kagSize, 4, FieldKind::Length);
  value.Number(p.offset, 8, FieldKind::Offset);
  value.Number(o.previousLinks ? p.previous : 0, 8, FieldKind::Offset);
  value.Number(o.footerLinks ? clip.partitions.back().offset : 0, 8, FieldKind::Offset);
  value.Number(p.headerBytes, 8, FieldKind::Length).Number(p.indexBytes, 8, FieldKind::Length);
  value.Number(p.indexSid, 4, FieldKind::Link).Number(p.bodyOffset, 8, FieldKind::Offset);
  value.Number(p.bodySid, 4, FieldKind::Link).Raw(kOperationalPattern1a);
  const std::vector<Label> containers = Containers(o);
  value.Append(Batch(containers.size(), 16));
  for (const Label& label : containers) value.Raw(label);
  Piece pack;
  pack.Packet(MakeLabel(0x060E2B3402050101, 0x0D01020101000400 | kind << 16), value, names[kind - 2]);
  Model(o).Fill(pack);
  return pack;
}

Piece RandomIndexPack(const Clip& clip) {
  const RandomIndex kind = clip.options.randomIndex;
  Piece value;
  for (const Partition& p : clip.partitions) {
    const bool wrong = kind == RandomIndex::WrongFirst && p.offset == 0;
    value.Number(p.bodySid, 4, FieldKind::Link);
    value.Number(wrong ? clip.partitions[1].offset : p.offset, 8, FieldKind::Offset);
  }
  const u64 whole = 20 + value.data.size() + 4;
  value.Number(whole + (kind == RandomIndex::WrongLength ? 1 : 0), 4, FieldKind::Length);
  return Piece().Packet(kRandomIndexPack, value, "RandomIndexPack");
}

// The units whose index lies in partition i.
Range IndexedUnits(const Clip& clip, std::size_t i) {
  if (clip.options.index == IndexLayout::InHeader) return {0, i == 0 ? clip.units : 0};
  if (clip.options.index == IndexLayout::None || i == 0) return {0, 0};
  return {clip.partitions[i - 1].firstUnit, clip.partitions[i - 1].units};
}

u64 Mix(u64 unit, unsigned element, u64 word) {
  u64 x = ((unit << 8 | element) + 1) * 0x9E3779B97F4A7C15 + word * 0xD1B54A32D192ED03;
  x = (x ^ x >> 32) * 0xD6E8FEB86659FD93;
  return x ^ x >> 32;
}

void AppendEssence(Bytes& out, u64 unit, unsigned element, u64 size) {
  for (u64 i = 0; i < size; i += 8) {
    unsigned char word[8];
    for (unsigned j = 0; j < 8; ++j) word[j] = static_cast<u8>(Mix(unit, element, i / 8) >> (8 * j));
    out.insert(out.end(), word, word + std::min<u64>(8, size - i));
  }
}

class ClipFile {
 public:
  ClipFile(Clip& clip, Sink& sink) : m_clip(clip), o(clip.options), m_sink(sink), m_model(clip.options) {}

  void Write() {
    for (std::size_t i = 0; i < m_clip.partitions.size(); ++i) {
      const Partition& p = m_clip.partitions[i];
      Hole(p.offset);
      Put(PartitionPack(m_clip, i));
      if (i == 0) Put(HeaderMetadata(m_model, m_clip.units).Write());
      if (p.indexBytes > 0) Put(IndexArea(m_model, m_clip.units).Write(IndexedUnits(m_clip, i)));
      for (u64 unit = p.firstUnit; unit < p.firstUnit + p.units; ++unit) {
        if (o.essence == Essence::Holes && unit != 0 && unit != m_clip.units - 1) continue;
        for (unsigned element = 0; element < m_model.Count(); ++element) PutElement(unit, element);
      }
    }
    if (o.randomIndex != RandomIndex::Absent) Put(RandomIndexPack(m_clip));
  }

 private:
  void Put(const Piece& piece) {
    for (Field field : piece.fields) {
      field.offset += m_position;
      if (o.recordFields) m_clip.fields.push_back(field);
    }
    m_sink.Append(piece.data.data(), piece.data.size());
    m_position += piece.data.size();
  }
  void Hole(u64 end) {
    if (end > m_position) m_sink.Hole(end - m_position);
    m_position = end;
  }

  void PutElement(u64 unit, unsigned element) {
    const Element place = m_clip.ElementAt(unit, element);
    Hole(place.offset);
    Piece head, rest;
    head.KeyAndLength(m_model.items[element].key, place.valueLength);
    if (place.kind == ElementKind::System) {
      head.Raw(m_model.SystemPackValue(unit));
      if (o.packageMetadata) head.Packet(kPackageSet, Piece().Raw(m_model.PackageSetValue()), "package metadata");
    } else if (o.essence == Essence::Full) {
      AppendEssence(head.data, unit, element, place.valueLength);
    }
    Put(head);
    if (place.kind != ElementKind::System) Hole(place.valueOffset + place.valueLength);
    const u64 fill = m_model.FillSize(m_position - place.offset);
    if (fill > 0) Put(rest.KeyAndLength(m_model.FillKey(), fill - 20));
    if (fill > 0) Hole(m_position + fill - 20);
  }

  Clip& m_clip;
  const ClipOptions& o;
  Sink& m_sink;
  Model m_model;
  u64 m_position = 0;
};

}  // namespace

Label MakeLabel(u64 high, u64 low) {
  Label label;
  for (unsigned i = 0; i < 16; ++i) label[i] = static_cast<u8>((i < 8 ? high : low) >> (56 - 8 * (i % 8)));
  return label;
}

// Lays the clip out: each partition begins where the one before it ends.
Clip::Clip(const ClipOptions& clipOptions) : options(clipOptions) {
  if (options.kagSize == 0 || options.gopLength == 0 || options.gopLength > 128 || options.groupLength == 0) {
    throw std::invalid_argument("no such clip");
  }
  for (const u32 count : options.partitionUnits) units += count;
  const Model model(options);
  partitions.resize(options.partitionUnits.size() + 2);
  for (std::size_t i = 0; i < partitions.size(); ++i) {
    Partition& p = partitions[i];
    p.offset = length;
    p.headerOffset = length + PartitionPack(*this, i).data.size();
    if (i == 0) p.headerBytes = HeaderMetadata(model, units).Write().data.size();
    if (i > 0) p.previous = partitions[i - 1].offset;
    if (i > 0) p.firstUnit = partitions[i - 1].firstUnit + partitions[i - 1].units;
    p.indexOffset = p.headerOffset + p.headerBytes;
    const Range indexed = IndexedUnits(*this, i);
    if (indexed.count > 0) p.indexBytes = IndexArea(model, units).Write(indexed).data.size();
    if (indexed.count > 0) p.indexSid = options.indexSid;
    p.essenceOffset = length = p.indexOffset + p.indexBytes;
    if (i == 0 || i + 1 == partitions.size()) continue;
    p.bodySid = options.bodySid;
    p.units = options.partitionUnits[i - 1];
    p.bodyOffset = model.StreamOffset(p.firstUnit);
    length += model.StreamOffset(p.firstUnit + p.units) - p.bodyOffset;
  }
  randomIndexOffset = length;
  if (options.randomIndex != RandomIndex::Absent) length += RandomIndexPack(*this).data.size();
}

unsigned Clip::ElementCount() const { return Model(options).Count(); }

Element Clip::ElementAt(u64 unit, unsigned element) const {
  const auto after = std::upper_bound(partitions.begin() + 1, partitions.end() - 1, unit,
                                      [](u64 value, const Partition& p) { return value < p.firstUnit; });
  const Partition& p = *(after - 1);
  const Model model(options);
  const Frame frame = model.FrameAt(unit);
  const u64 offset = p.essenceOffset - p.bodyOffset + model.StreamOffset(unit) + model.start[frame][element];
  const u64 size = model.items[element].size[frame];
  return {model.items[element].kind, offset, offset + Model::HeadSize(size), size};
}

IndexEntry Clip::EntryAt(u64 unit) const { return Model(options).Entry(unit, units); }

Bytes Clip::ElementBytes(u64 unit, unsigned element) const {
  const Model model(options);
  const Element place = ElementAt(unit, element);
  Piece value;
  if (place.kind == ElementKind::System) {
    value.Raw(model.SystemPackValue(unit));
    if (options.packageMetadata) value.Raw(model.PackageSetValue());
  } else if (options.essence == Essence::Full) {
    AppendEssence(value.data, unit, element, place.valueLength);
  } else {
    value.Zeros(place.valueLength);
  }
  return value.data;
}

unsigned char ElementByte(u64 unit, unsigned element, u64 position) {
  return static_cast<unsigned char>(Mix(unit, element, position / 8) >> (8 * (position % 8)));
}

Clip WriteClip(const ClipOptions& options, Sink& sink) {
  Clip clip(options);
  ClipFile(clip, sink).Write();
  return clip;
}

Clip WriteClipFile(const ClipOptions& options, const std::string& path) {
  FileSink sink(path);
  Clip clip = WriteClip(options, sink);
  sink.Close();
  return clip;
}

}  // namespace clipwriter
