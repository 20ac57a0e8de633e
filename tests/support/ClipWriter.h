#ifndef CLIPPARSER_TESTS_SUPPORT_CLIPWRITER_H
#define CLIPPARSER_TESTS_SUPPORT_CLIPWRITER_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

// Writes whole synthetic camera clips (SMPTE ST 377-1, OP-1a, frame wrapped) byte by byte. Nothing here comes from the
// library under test: keys, tags, number coding and index arithmetic are its own, so that a mistake cannot cancel out.
//
// A file is laid out as
//    header partition   pack, fill to one KAG, header metadata, [index segments]
//    body partition i   pack, fill to one KAG, [index of body partition i - 1], content packages
//    footer partition   pack, fill to one KAG, [index of the last body partition]
//    random index pack
// and a content package as system item, picture, sound elements, [data element], each filled up to the KAG. Every size
// is a function of the options, so any position can be computed and none needs to be remembered.
namespace clipwriter {

using Label = std::array<unsigned char, 16>;
using Bytes = std::vector<unsigned char>;

enum class IndexLayout { PerPartition, InHeader, None };  // None: IndexByteCount is 0 everywhere
enum class RandomIndex { Present, Absent, WrongLength, WrongFirst };
enum class PictureSet { CDCI, RGBA, MPEG };
// Keys: keys and lengths are written, the values are holes (zeros). Holes: only the first and the last edit unit are
// written, as with Keys; all the others are holes.
enum class Essence { Full, Keys, Holes };

Label MakeLabel(std::uint64_t high, std::uint64_t low);

struct ClipOptions {
  // Partitions. The pack takes one KAG when that is big enough for it (256 or more), else the multiple it needs.
  std::uint16_t minorVersion = 2;
  std::uint32_t kagSize = 512;
  std::vector<std::uint32_t> partitionUnits = {10, 12, 3};
  std::uint32_t bodySid = 2;
  std::uint32_t indexSid = 1;
  bool footerLinks = true;    // false: FooterPartition is 0
  bool previousLinks = true;  // false: PreviousPartition is 0
  RandomIndex randomIndex = RandomIndex::Present;

  // Index. InHeader is written for version 1.3 with one body partition, since its offsets count from the first one.
  IndexLayout index = IndexLayout::PerPartition;
  std::uint32_t segmentUnits = 0;            // edit units per segment; 0: all, or the most that 65,535 bytes hold
  unsigned staleSegments = 0;                // half-long earlier versions written before the segments that count
  std::uint8_t slices = 1;                   // 0 needs pictures of one size; n: elements behind the picture in n slices
  std::optional<std::uint8_t> tag3F0E = {};  // the value of that item, left out by default

  // Content packages.
  Essence essence = Essence::Full;
  std::uint32_t gopLength = 12;   // closed, at most 128
  std::uint32_t groupLength = 3;  // distance of the predicted frames: 3 has two B frames between them, 1 none
  std::uint32_t intraBytes = 12000, predictedBytes = 6000, bidirectionalBytes = 3000;
  std::uint32_t soundElements = 2;
  std::uint32_t soundBytes = 5760;
  std::uint32_t dataBytes = 0;  // 0: no data element and no data track
  bool systemItem = true;
  bool packageMetadata = true;  // the local set behind the system metadata pack
  bool cameraMetadata = true;   // its item 0x88
  std::vector<std::array<unsigned char, 5>> cameraRecords = {{1, 0, 0, 0, 1}, {3, 0xFF, 0, 0, 0}, {2, 0x20, 0, 0, 0}};
  std::array<unsigned char, 16> creationDate = {0x12, 0x34, 0x56, 0x11, 0, 0, 0, 0, 0x22, 0x11, 0x26, 0x20};
  std::array<unsigned char, 4> userBits = {0xCA, 0xFE, 0x20, 0x26};

  // Header metadata.
  std::uint32_t rateNumerator = 25, rateDenominator = 1;
  bool dropFrame = false;
  std::uint64_t startTimecode = 90000;        // frames
  std::optional<std::int64_t> duration = {};  // said by the sequences, if not the truth
  std::uint32_t width = 1920, height = 1080, aspectNumerator = 16, aspectDenominator = 9;
  Label pictureCoding = MakeLabel(0x060E2B3404010103, 0x0401020201040300);   // MPEG-2 4:2:2 HL long GOP
  Label captureGamma = MakeLabel(0x060E2B3404010101, 0x0401010101020000);    // BT.709
  Label colorPrimaries = MakeLabel(0x060E2B3404010106, 0x0401010103030000);  // BT.709
  PictureSet picture = PictureSet::CDCI;
  bool mpegProperties = true;        // under dynamic tags 0xFFFF and down, which the primer pack names
  std::uint32_t bitRate = 50000000;  // of the sub-descriptor (tags 0x8080, 0x8007); 0: none
  bool aesSound = true;              // else wave descriptors
  bool multipleDescriptor = true;    // else the picture descriptor alone
  bool primer = true;
  bool sequenceInfo = true;  // the private packet that places the file in a sequence of files
  unsigned identifications = 1;
  unsigned crowd = 0;  // source packages, and components of the first material track, beyond those of a clip; <= 4,093

  bool recordFields = false;  // fill Clip::fields
};

// Where bytes go, front to back.
class Sink {
 public:
  virtual ~Sink() = default;
  virtual void Append(const unsigned char* data, std::size_t size) = 0;
  virtual void Hole(std::uint64_t size) = 0;  // reads as zeros
};

class MemorySink : public Sink {
 public:
  void Append(const unsigned char* data, std::size_t size) override { bytes.insert(bytes.end(), data, data + size); }
  void Hole(std::uint64_t size) override { bytes.resize(bytes.size() + static_cast<std::size_t>(size)); }

  Bytes bytes;
};

// Holes become sparse. Throws std::runtime_error when the file can't be written.
class FileSink : public Sink {
 public:
  explicit FileSink(const std::string& path) {
    m_file.open(path, std::ios::binary | std::ios::trunc);
    if (!m_file) throw std::runtime_error("can't create " + path);
    m_file.exceptions(std::ios::badbit | std::ios::failbit);
  }
  void Append(const unsigned char* data, std::size_t size) override {
    m_file.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  }
  void Hole(std::uint64_t size) override { m_file.seekp(static_cast<std::streamoff>(size), std::ios::cur); }
  void Close() { m_file.close(); }  // needed, since a destructor can't report a failure

 private:
  std::ofstream m_file;
};

enum class FieldKind { Length, Count, Offset, Link, Tag };

// A number or reference that a reader follows, for damage. Link: UIDs, UMIDs, SIDs and track IDs.
struct Field {
  std::uint64_t offset;
  unsigned width;
  FieldKind kind;
  const char* name;  // of its packet; empty for those of fill items and of essence elements
  unsigned tag;      // local tag of the item it belongs to, 0 outside sets
};

struct Partition {
  std::uint64_t offset = 0;
  std::uint64_t previous = 0;
  std::uint64_t headerBytes = 0, indexBytes = 0;    // HeaderByteCount, IndexByteCount
  std::uint64_t headerOffset = 0, indexOffset = 0;  // where they begin
  std::uint64_t essenceOffset = 0;
  std::uint64_t bodyOffset = 0;  // essence bytes in the partitions before
  std::uint32_t indexSid = 0, bodySid = 0;
  std::uint64_t firstUnit = 0;
  std::uint32_t units = 0;
};

enum class ElementKind { System, Picture, Sound, Data };

struct Element {
  ElementKind kind;
  std::uint64_t offset;       // of the key
  std::uint64_t valueOffset;  // of the first packet of the system item
  std::uint64_t valueLength;
};

struct IndexEntry {
  int temporalOffset, keyFrameOffset;
  unsigned flags;
  std::uint64_t streamOffset;
};

// What was, or will be, written. Small whatever the length of the clip.
struct Clip {
  explicit Clip(const ClipOptions& clipOptions);

  unsigned ElementCount() const;
  Element ElementAt(std::uint64_t unit, unsigned element) const;
  IndexEntry EntryAt(std::uint64_t unit) const;
  // The value; of a system item that of its pack followed by that of its local set.
  Bytes ElementBytes(std::uint64_t unit, unsigned element) const;

  ClipOptions options;
  std::uint64_t length = 0;  // of the file
  std::uint64_t units = 0;
  std::vector<Partition> partitions;  // header, bodies, footer
  std::uint64_t randomIndexOffset = 0;
  std::vector<Field> fields;  // filled when the clip is written and options.recordFields is set
};

// Byte `position` of the value of an essence element (not of the system item), unless it is a hole.
unsigned char ElementByte(std::uint64_t unit, unsigned element, std::uint64_t position);

Clip WriteClip(const ClipOptions& options, Sink& sink);
Clip WriteClipFile(const ClipOptions& options, const std::string& path);

}  // namespace clipwriter

#endif  // CLIPPARSER_TESTS_SUPPORT_CLIPWRITER_H
