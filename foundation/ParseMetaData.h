#ifndef CLIPPARSER_FOUNDATION_PARSEMETADATA_H
#define CLIPPARSER_FOUNDATION_PARSEMETADATA_H

#include "foundation/Export.h"
#include "foundation/MxfUUID.h"
#include "foundation/OxMemoryStream.h"
#include "foundation/OxMutableArray.h"
#include "foundation/OxRecursiveLock.h"
#include "foundation/OxSharedPtr.h"
#include "foundation/OxStream.h"
#include "foundation/OxStringMac.h"
#include "foundation/OxVector.h"
#include "foundation/UMID.h"

class KLVPacket;

// A date and time as MXF stores it (SMPTE ST 377-1), 8 bytes: year (2), then one byte for each other field.
struct _Timestamp {
  short year;                         // of the common era
  unsigned char month;                // 1 to 12
  unsigned char day;                  // 1 to 31
  unsigned char hour;                 // 0 to 23
  unsigned char minute;               // 0 to 59
  unsigned char second;               // 0 to 59
  unsigned char quarterMilliseconds;  // milliseconds divided by 4
};

// A rational number as MXF stores it, 8 bytes: numerator (4), denominator (4).
struct _Rational {
  int numerator;    // as stored
  int denominator;  // as stored: may be 0
};

// What ReadKeyAndLength found.
enum class PacketHead {
  Failed,   // no whole key and length at the position
  PastEnd,  // a key and a length, but the value would run past the end of the stream
  Read,     // a packet that lies in the stream
};

// The reader through which every packet and field of a clip is decoded: a position over a stream, and typed reads of
// MXF's big-endian fields (SMPTE ST 377-1, ST 336).
//
// Each read either succeeds whole and moves the position by what it consumed, or fails and leaves the position where
// it was; where an operation departs from that, it says so. Without a stream every read fails. Nothing throws, except
// std::bad_alloc where not even a small object can be made.
//
// Threads: not synchronised. Callers that share a reader hold it as a lock, which it is, around each sequence of reads.
class CLIPPARSER_EXPORT ParseMetaData : public OxRecursiveLock {
 public:
  // A reader at the start of the stream; without one, a reader that reads nothing.
  ParseMetaData();
  explicit ParseMetaData(OxSharedPtr<OxStream> stream);
  ~ParseMetaData() override;

  // Both put the position at 0.
  void SetStream(OxSharedPtr<OxStream> stream);
  void ResetStream();

  // The position, in bytes from the start of the stream.
  [[nodiscard]] long long offset() const { return static_cast<long long>(m_position); }
  // Bytes from the position to the end of the stream; 0 without a stream or beyond its end.
  [[nodiscard]] unsigned long long RestLength() const;

  // Moves the position; false, and not moved, without a stream or when refused:
  //   origin 0, from the start    refused beyond the end; a negative offset is taken, and every read there fails
  //   origin 1, from the position refused before the start and beyond the end
  //   origin 2, from the end      refused before the start; beyond the end is taken, and every read there fails
  //   any other origin            refused
  bool SetOffset(long long offset, int origin);

  // Fixed-width reads. False and nothing read for a null output; otherwise the integers are set to 0 before the read.
  [[nodiscard]] bool GetUInt8(unsigned char* value);
  [[nodiscard]] bool GetUInt16(unsigned short* value);
  [[nodiscard]] bool GetUInt32(unsigned int* value);
  [[nodiscard]] bool GetUInt64(unsigned long long* value);
  [[nodiscard]] bool GetInt8(signed char* value);
  [[nodiscard]] bool GetInt16(short* value);
  [[nodiscard]] bool GetInt32(int* value);
  [[nodiscard]] bool GetInt64(long long* value);
  // 16 bytes in file order; `value` is not changed by a failed read.
  [[nodiscard]] bool GetUUID(MxfUUID* value);
  // `count` bytes as stored; the buffer must hold as many, and may hold some of them after a failure.
  [[nodiscard]] bool GetBytes(unsigned char* buffer, unsigned int count);

  // A BER length (ST 336): one byte below 0x80, or 0x81 to 0x84 and as many length bytes. The indefinite form (0x80)
  // and longer ones are refused, so a length is at most 2^32 - 1.
  [[nodiscard]] bool GetBER(unsigned int* value);
  // A BER object identifier of at most four bytes, seven bits each.
  [[nodiscard]] bool GetOIDBER(unsigned int* value);
  // 8 bytes each. After a failed read the fields read so far keep their values.
  [[nodiscard]] bool GetTimestamp(_Timestamp* value);
  [[nodiscard]] bool GetRational(_Rational* value);

  // The following give an empty pointer on failure.

  // 16 bytes in file order.
  [[nodiscard]] OxSharedPtr<MxfUUID> GetUUID();
  // A UMID (ST 330). 32 bytes; when the length byte (byte 12) says extended (0x33) the position moves by 64 and the
  // second half of the result repeats the first: the source package signature of the file is not read.
  [[nodiscard]] OxSharedPtr<UMID> GetUMID();
  // A batch or array of 16-byte items: item count (4), item size (4), items. An array of what could be read; an empty
  // array, with only the 8 header bytes consumed, when the count is 0 or the item size is not 16. A suspicious count is
  // held to `mostItems`.
  [[nodiscard]] OxSharedPtr<OxMutableArray> GetUUIDArray(unsigned long long mostItems = ~0ULL);
  // A batch of more items than any camera writes is suspicious: its count may be a mistake.
  static constexpr unsigned int kSuspiciousCount = 65536;
  // `count` single bytes.
  [[nodiscard]] OxSharedPtr<OxVector<unsigned char>> GetEnum(unsigned long long count);
  // `byteCount` bytes of two-byte characters, big-endian, a trailing zero character included. Empty when the count is
  // odd or 0.
  [[nodiscard]] OxSharedPtr<OxStringMac> GetUTF16String(unsigned int byteCount);
  // A copy of the next `count` bytes.
  [[nodiscard]] OxSharedPtr<OxMemoryStream> CopyMemoryStream(unsigned long long count);

  // The walk over packets: key (16), BER length, value (ST 336).

  // Reads key and length at the position into `packet` and stands at the value. True as well when the value runs past
  // the end of the stream: `packet` is then left as it was and the reader stands after the length field. Callers that
  // must tell the two apart use ReadKeyAndLength.
  [[nodiscard]] bool ParseKeyAndLength(KLVPacket* packet);
  [[nodiscard]] bool ParseKeyAndLength(OxSharedPtr<KLVPacket> packet);
  // Reads a whole packet: key and length, then packet->isImportable(), then packet->Import. On success the position
  // is at the next packet. On any failure it is back at the key, but `packet` keeps what was read of it.
  [[nodiscard]] bool ParsePacket(KLVPacket* packet);
  [[nodiscard]] bool ParsePacket(OxSharedPtr<KLVPacket> packet);
  // Imports a value of packet->Length() bytes at the position, and moves past it whatever the import consumed. Only
  // the low 16 bits of the import's status count.
  [[nodiscard]] bool ParsePacketValue(KLVPacket* packet);
  [[nodiscard]] bool ParsePacketValue(OxSharedPtr<KLVPacket> packet);
  // As ParseKeyAndLength, but tells a packet that runs past the end from one that was read. `packet` is set, and its
  // next offset lies at least 17 bytes further, exactly when the result is Read: a walk that stops at anything else
  // never sees the packet before it again.
  [[nodiscard]] PacketHead ReadKeyAndLength(KLVPacket* packet);

 private:
  // Reads exactly `count` bytes at the position without moving it.
  bool PeekBytes(unsigned char* buffer, unsigned long long count) const;
  // Reads key and length and moves past them; after a failure the position may lie between them.
  bool GetKeyAndLength(MxfUUID& key, unsigned int& length);
  template <class Unsigned>
  bool GetUnsigned(Unsigned* value);

  unsigned long long m_position = 0;
  OxSharedPtr<OxStream> m_stream;
};

#endif  // CLIPPARSER_FOUNDATION_PARSEMETADATA_H
