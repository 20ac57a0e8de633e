#ifndef CLIPPARSER_TESTS_SUPPORT_TESTCLIP_H
#define CLIPPARSER_TESTS_SUPPORT_TESTCLIP_H

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <tuple>

#include "ClipWriter.h"
#include "cache/FBCMemoryCacheManager.h"
#include "cache/ReadOnlyFile.h"
#include "foundation/Status.h"
#include "stream/MXFStream.h"

using clipwriter::Bytes;
using clipwriter::ClipOptions;

// Where a partition pack's field lies, from the pack's key on.
constexpr unsigned kKagSize = 20 + 4, kThisPartition = 20 + 8, kPrevious = 20 + 16, kFooter = 20 + 24;
constexpr unsigned kHeaderByteCount = 20 + 32, kIndexByteCount = 20 + 40, kBodySid = 20 + 60;
constexpr unsigned kLengthField = 17;         // of a packet: three bytes behind 0x83
constexpr std::uint64_t kPastEnd = 0xFFFFFF;  // as a packet's length: more than any of these files has

// Three body partitions of 10, 12 and 3 edit units; short content packages, so that the clip has some hundred
// kilobytes.
inline ClipOptions SmallClip() {
  ClipOptions options;
  options.intraBytes = 1700, options.predictedBytes = 900, options.bidirectionalBytes = 300;
  options.soundBytes = 400;
  options.recordFields = true;
  return options;
}

// Version 1.3: one body partition of 75 edit units, whose index of 10 units per segment lies in the header partition.
inline ClipOptions HeaderIndexClip() {
  ClipOptions options = SmallClip();
  options.minorVersion = 3;
  options.index = clipwriter::IndexLayout::InHeader;
  options.partitionUnits = {75};
  options.segmentUnits = 10;
  return options;
}

inline void WithoutRandomIndex(ClipOptions& options) { options.randomIndex = clipwriter::RandomIndex::Absent; }

// A clip that is written, damaged, opened and asked; its file goes away with it.
class TestClip {
 public:
  explicit TestClip(const ClipOptions& options) : truth(clipwriter::WriteClip(options, m_file)) {}
  ~TestClip() { std::filesystem::remove(m_path); }

  // Damage, before Open.
  TestClip& Patch(std::uint64_t offset, std::uint64_t value, unsigned width) {
    for (unsigned i = width; i-- > 0; value >>= 8) m_file.bytes.at(offset + i) = static_cast<unsigned char>(value);
    return *this;
  }
  TestClip& PatchPack(std::size_t partition, unsigned field, std::uint64_t value) {
    return Patch(PackAt(partition) + field, value, field == kKagSize || field == kBodySid ? 4 : 8);
  }
  TestClip& PatchLength(std::uint64_t packet, std::uint64_t value) { return Patch(packet + kLengthField, value, 3); }
  TestClip& Copy(std::uint64_t from, std::uint64_t to, unsigned size) {
    for (unsigned i = 0; i < size; ++i) Patch(to + i, m_file.bytes.at(from + i), 1);
    return *this;
  }
  std::uint64_t PackAt(std::size_t partition) const { return truth.partitions.at(partition).offset; }
  const unsigned char* At(std::uint64_t offset) const { return &m_file.bytes.at(offset); }
  std::uint64_t NextPacket(std::uint64_t packet) const {
    const unsigned char* length = At(packet + kLengthField);
    return packet + 20 + length[0] * 65536u + length[1] * 256u + length[2];
  }

  // The n-th packet of a name, or of the items of one tag in packets of a name.
  std::uint64_t PacketAt(const std::string& name, unsigned n = 0) const {
    return FieldAt(name, clipwriter::FieldKind::Length, 1, 0, n) - 16;
  }
  std::uint64_t ItemAt(const std::string& name, unsigned tag, unsigned n = 0) const {
    return FieldAt(name, clipwriter::FieldKind::Tag, 2, tag, n);
  }

  // The status of Parse.
  unsigned int Open() {
    if (m_path.empty()) {
      m_path = (std::filesystem::temp_directory_path() / "clip-test-XXXXXX").string();
      ::close(::mkstemp(m_path.data()));
    }
    const auto size = static_cast<std::streamsize>(m_file.bytes.size());
    std::ofstream(m_path, std::ios::binary).write(reinterpret_cast<const char*>(m_file.bytes.data()), size);
    m_stream = std::make_unique<MXFStream>(CreateOxString(m_path.c_str()));
    return m_stream->Parse();
  }
  MXFStream* operator->() { return m_stream.get(); }
  MXFStream& operator*() { return *m_stream; }
  const std::string& Path() const { return m_path; }

  // "right" when the index entry of an edit unit and each of its elements are as written, "none" without an entry.
  std::string Answer(unsigned unit) {
    signed char temporal = 0, key = 0, sameTemporal = 0, sameKey = 0;
    unsigned char flags = 0, sameFlags = 0;
    if (!m_stream->GetFlagsAtIndex(unit, flags)) return "none";
    const clipwriter::IndexEntry entry = truth.EntryAt(unit);
    bool isRight = m_stream->GetTemporalOffsetAtIndex(unit, temporal) && m_stream->GetKeyOffsetAtIndex(unit, key) &&
                   m_stream->GetEditUnitInfo(unit, sameTemporal, sameKey, sameFlags) &&
                   std::tie(temporal, key, flags) == std::tie(sameTemporal, sameKey, sameFlags) &&
                   temporal == entry.temporalOffset && key == entry.keyFrameOffset && flags == entry.flags;
    for (unsigned i = 0; i < truth.ElementCount(); ++i) isRight = isRight && isElementRight(unit, i);
    return isRight ? "right" : "wrong";
  }
  bool isElementRight(unsigned unit, unsigned element) {
    const clipwriter::Element written = truth.ElementAt(unit, element);
    const bool isSystem = written.kind == clipwriter::ElementKind::System;
    const _OxRange range = m_stream->RangeEssenceData(unit, element);
    unsigned long long offset = 0;
    Bytes bytes(1 << 16);
    bytes.resize(m_stream->ReadEssenceData(unit, element, bytes.data(), 1 << 16));
    return m_stream->GetEssenceOffset(unit, element, offset) == kStatusOK && offset == written.offset &&
           range.location == (isSystem ? 0x7FFFFFFFFFFFFFFF : written.valueOffset) &&
           range.length == (isSystem ? 0 : written.valueLength) && bytes == truth.ElementBytes(unit, element) &&
           (written.kind != clipwriter::ElementKind::Data || bytes == m_stream->GetDataItem(unit));
  }

 private:
  std::uint64_t FieldAt(const std::string& name, clipwriter::FieldKind kind, unsigned width, unsigned tag,
                        unsigned n) const {
    for (const clipwriter::Field& f : truth.fields) {
      if (name == f.name && kind == f.kind && width == f.width && tag == f.tag && n-- == 0) return f.offset;
    }
    throw std::out_of_range("no such field in " + name);
  }

  clipwriter::MemorySink m_file;

 public:
  const clipwriter::Clip truth;

 private:
  std::string m_path;
  std::unique_ptr<MXFStream> m_stream;
};

// Counts the reads of files from here on, none of which finds its bytes in a cache.
class CountedReads {
 public:
  CountedReads() {
    FBCMemoryCacheManager::DeactivateInstance();
    s_count = 0;
    s_blocks = 0;
    s_former = ReadOnlyFile::UseSystemCalls({});
    const auto pread = [](int descriptor, void* buffer, unsigned long long count, long long offset) {
      s_blocks += (count + kBlockSize - 1) / kBlockSize;
      return ++s_count, s_former.pread(descriptor, buffer, count, offset);
    };
    ReadOnlyFile::UseSystemCalls({s_former.open, s_former.fstat, pread, s_former.close});
  }
  ~CountedReads() { ReadOnlyFile::UseSystemCalls(s_former); }

  static inline int s_count = 0;
  static inline unsigned long long s_blocks = 0;  // of 64 KiB

 private:
  static constexpr unsigned long long kBlockSize = 64 * 1024;

  static inline ReadOnlyFile::SystemCalls s_former{};
};

#endif  // CLIPPARSER_TESTS_SUPPORT_TESTCLIP_H
