#ifndef CLIPPARSER_STREAM_MXFSTREAM_H
#define CLIPPARSER_STREAM_MXFSTREAM_H

#include <atomic>
#include <vector>

#include "cache/CacheFileStream.h"
#include "foundation/OxNumber.h"
#include "foundation/ParseMetaData.h"
#include "klv/PartitionPack.h"
#include "klv/RandomIndexPack.h"
#include "klv/StreamFileSequenceInfo.h"
#include "metadata/HeaderMetadata.h"
#include "stream/BodyPartitionArray.h"

// One clip: an MXF file (SMPTE ST 377-1, OP-1a, frame wrapped) with its essence under body SID 2. A host makes one,
// calls Parse once, and asks.
//
//   MXFStream clip(path);              // a file that is not there is no error yet
//   if (clip.Parse() != kStatusOK) …   // not there, not MXF, or header metadata damaged
//   clip.ReadEssenceData(unit, 1, buffer, size);
//
// Opening reads the random index pack, the header partition pack and the header metadata. Index tables are read when
// an edit unit is first asked for that no loaded segment covers. Numbers of edit units count from 0, those of elements
// as in the content package: 0 is the system item, 1 the picture, then sound, then data.
//
// Statuses: kStatusOK, or kStatusUnreadable for everything that could not be read or found, unless stated otherwise.
// Outputs are written on success only. Nothing but the constructor throws, except std::bad_alloc where not even a small
// object can be made; what a file asks for beyond the memory there is fails with a status.
//
// Threads: one thread at a time opens a clip. After that the queries for index, essence and camera information may be
// called from several threads: each holds the lock of the clip's reader for its whole sequence of reads. The plain
// accessors are for the thread that opened the clip, or under the host's lock.
class CLIPPARSER_EXPORT MXFStream : public OxObject {
 public:
  // Opens the file and reads nothing yet; a file that cannot be opened makes Parse fail. Throws "MXFStream init
  // error" (const char*) when the path is an empty pointer or memory is short.
  explicit MXFStream(OxSharedPtr<OxStringMac> path);
  ~MXFStream() override;
  MXFStream(const MXFStream&) = delete;
  using OxObject::operator=;
  MXFStream& operator=(const MXFStream&) = delete;

  // --- Opening ---

  // Finds the partitions, reads the header metadata and takes the duration from the first track of the first material
  // package. Call it once: on a file without a random index pack a second call lists its partitions twice. A disk that
  // fails on the way fails it; the file wants a new clip then.
  unsigned int Parse();
  // Steps of Parse, this one and those below. The pack that the last four bytes of the file lead to; its absence is not
  // a failure of Parse.
  unsigned int ReadRandomIndexPack();
  // At the first entry of the random index pack or, when that does not lead there, by a walk from offset 0.
  unsigned int ReadHeaderPartitionPack();
  // Lists the body partitions by a walk backwards from the footer; those found before a failure stay listed.
  unsigned int ConstructBodyPartitionArrayFromStream();
  // Reads HeaderByteCount bytes from ThisPartition + KAGSize on; sets read before a failure stay.
  unsigned int ParseHeaderPartition();
  // Takes the duration from the first track of the first material package; see Duration.
  unsigned int AnalysisDuration();

  // --- What the header tells ---

  // In edit units of the first track; 0 until AnalysisDuration sets it. A clip that is still being recorded may say -1.
  [[nodiscard]] long long Duration() const { return m_duration; }
  // What the header metadata says; filled by ParseHeaderPartition, never empty.
  [[nodiscard]] OxSharedPtr<HeaderMetadata> GetHeaderMetadata() const { return m_headerMetadata; }
  // Empty before a successful ReadHeaderPartitionPack.
  [[nodiscard]] OxSharedPtr<PartitionPack> GetHeaderPartitionPack() const { return m_headerPartitionPack; }
  // The file, for hosts that read packets of their own; empty when it could not be opened. Reads at absolute offsets
  // need no lock.
  [[nodiscard]] OxSharedPtr<OxStream> GetStream() const { return m_stream; }
  // The last picture descriptor in the file: 0 CDCI or none, 1 RGBA.
  [[nodiscard]] unsigned int GetEssenceDescriptor() const { return m_essenceDescriptor; }
  // Empty when the header partition holds none.
  [[nodiscard]] OxSharedPtr<StreamFileSequenceInfo> GetStreamFileSequenceInfo() const { return m_sequenceInfo; }
  // Decodes the packet at an absolute file offset; empty when it is not stream file sequence information. Takes no
  // lock and moves no position of the clip.
  [[nodiscard]] OxSharedPtr<StreamFileSequenceInfo> GetStreamFileSequenceInfoAtOffset(long long offset) const;

  // --- Camera information ---
  // The first content package is read for these. kStatusOK with nothing written means that the clip does not carry
  // the item: preset the output to tell that from an answer.

  // 4 bytes: the user bits of the system item's user date (SMPTE ST 12, ST 385).
  unsigned int GetUserBit(unsigned char* bits);
  // 16 bytes: the creation date of the system item (ST 385).
  unsigned int GetPackageCreationDate(unsigned char* date);
  // 1 byte: the element count in the key of the first sound element (ST 379), not a count of tracks.
  unsigned int GetAudioChannel(unsigned char* count);
  // Unsigned 8-bit, 0 to 3: the stabilizer's state in the camera metadata of the system item. kStatusUnreadable as well
  // when the system item has no package metadata set.
  unsigned int GetImageStabilizer(OxSharedPtr<OxNumber>* state);
  // Unsigned 32-bit, bits per second, from the second track of the first material package. kStatusUnreadable when the
  // header does not tell it, or the package has fewer than three tracks. Does not take the reader's lock.
  unsigned int GetVideoBitRate(OxSharedPtr<OxNumber>* rate) const;
  // The data element of an edit unit; empty on any failure.
  [[nodiscard]] std::vector<unsigned char> GetDataItem(unsigned int editUnit);

  // --- Essence ---

  // The file offset of an element's key.
  unsigned int GetEssenceOffset(unsigned int editUnit, unsigned int element, unsigned long long& offset);
  // Where an element's value lies in the file; (0x7FFFFFFFFFFFFFFF, 0) on any failure, and for the system item, which
  // is not an essence element.
  [[nodiscard]] _OxRange RangeEssenceData(unsigned int editUnit, unsigned int element);
  // Copies an element's value and returns its size in bytes; 0 on any failure, also when the buffer is too small. For
  // the system item the package metadata set that follows is appended when it fits.
  [[nodiscard]] unsigned int ReadEssenceData(unsigned int editUnit, unsigned int element, unsigned char* buffer,
                                             unsigned int bufferSize);

  // --- Index (ST 377-1) ---

  // False when the edit unit is not in the clip or in no index.
  [[nodiscard]] bool GetFlagsAtIndex(unsigned int editUnit, unsigned char& flags);
  [[nodiscard]] bool GetKeyOffsetAtIndex(unsigned int editUnit, signed char& offset);
  [[nodiscard]] bool GetTemporalOffsetAtIndex(unsigned int editUnit, signed char& offset);
  // All three. After a failure the outputs before the one that failed may be written.
  [[nodiscard]] bool GetEditUnitInfo(unsigned int editUnit, signed char& temporalOffset, signed char& keyFrameOffset,
                                     unsigned char& flags);

  // Load the index table segment that covers an edit unit. In files of version 1.3 the index lies in the header
  // partition, as segments of one size and one duration; in others each body partition's index lies in the partition
  // that follows it, the last one's in the footer. The latter is found by stepping from partition to partition, at
  // most 100 times; after that the status is kStatusOK and the edit unit still has no index.
  unsigned int ReadIndexTable(unsigned int editUnit);
  unsigned int ReadIndexTabelFromHeaderPartition(unsigned int editUnit);
  unsigned int ReadIndexTableFromPartition(unsigned int editUnit);
  // Loads the index of one body partition: the last segment in the partition that follows.
  unsigned int ReadIndexTableAtPartition(unsigned int index);
  // Reads the partition pack of a body partition. kStatusRefused when the pack says that it lies elsewhere.
  unsigned int ReadBodyPartitionInfo(unsigned int index);
  // Every index table segment of the partition at a file offset; empty pointer when there is no partition pack, or the
  // disk failed on the way.
  [[nodiscard]] OxSharedPtr<OxArray> GetIndexFromPartition(unsigned long long fileOffset);

 private:
  // The part [begin, end) of a file that holds index table segments.
  struct IndexArea {
    unsigned long long begin;
    unsigned long long end;
  };

  // Opening.
  bool TakeListedPartitions();
  bool ReadHeaderPartitionPackAt(unsigned long long offset, const OxSharedPtr<PartitionPack>& pack);
  bool FindHeaderPartitionPack(const OxSharedPtr<PartitionPack>& pack);
  bool ParseHeaderPackets(unsigned long long end);
  bool ParseHeaderPacket(const OxSharedPtr<KLVPacket>& packet);
  bool ParseStructuralSet(const OxSharedPtr<KLVPacket>& packet);
  bool ParseSequenceInfo(const OxSharedPtr<KLVPacket>& packet);
  bool ParsePrimer(const OxSharedPtr<KLVPacket>& packet);

  // Reading; the caller holds the reader's lock.
  bool MoveTo(unsigned long long offset);
  OxSharedPtr<PartitionPack> PartitionPackAt(unsigned long long offset);
  PacketHead ReadElementHead(unsigned int editUnit, unsigned int element, KLVPacket& packet);

  unsigned int ReadPacketValue(unsigned char* buffer, unsigned int bufferSize);

  // How often the disk has failed so far: what was looked for in between and not found may be there all the same.
  [[nodiscard]] unsigned long long FailedReads() const { return m_stream ? m_stream->FailedReads() : 0; }

  // Index; the caller holds the reader's lock.
  template <class Ask>
  bool AskIndex(unsigned int editUnit, Ask ask);
  template <class Visit>
  bool VisitIndexSegments(const PartitionPack& pack, Visit visit);
  static IndexArea IndexAreaOf(const PartitionPack& pack);
  OxSharedPtr<IndexTableSegment> NextIndexSegment(unsigned long long& position, unsigned long long end);
  bool PlaceHeaderSegment(unsigned int editUnit, const IndexArea& area, unsigned long long& position,
                          unsigned int& number) const;
  OxSharedPtr<IndexTableSegment> AttachHeaderSegment(const IndexArea& area, unsigned long long position,
                                                     unsigned int number);
  [[nodiscard]] bool isIndexInHeader() const;
  bool EnsureBodyPartitionData(unsigned int index);
  void KeepBodyPartitionData(unsigned int index, const OxSharedPtr<PartitionPack>& pack);
  [[nodiscard]] bool isIndexLoaded(unsigned int index) const;
  bool IndexPartitionOffset(unsigned int index, unsigned long long& offset) const;

  // Camera information; the caller holds the reader's lock.
  unsigned int ReadFromSystemPack(long long valueOffset, unsigned char* buffer, unsigned int size);
  bool ReadCameraMetadataKey(MxfUUID& key);
  bool FindStabilizerRecord(unsigned int recordCount, unsigned char& value);

  OxSharedPtr<ParseMetaData> m_reader;  // its lock is the outermost of all
  OxSharedPtr<CacheFileStream> m_stream;
  std::atomic<long long> m_duration{0};
  OxSharedPtr<PartitionPack> m_headerPartitionPack;
  OxSharedPtr<BodyPartitionArray> m_bodyPartitions;
  OxSharedPtr<HeaderMetadata> m_headerMetadata;
  OxSharedPtr<RandomIndexPack> m_randomIndexPack;
  OxSharedPtr<KLVPacket> m_packet;  // scratch, used under the reader's lock
  OxSharedPtr<StreamFileSequenceInfo> m_sequenceInfo;
  unsigned int m_essenceDescriptor = 0;
};

#endif  // CLIPPARSER_STREAM_MXFSTREAM_H
