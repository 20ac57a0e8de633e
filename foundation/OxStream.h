#ifndef CLIPPARSER_FOUNDATION_OXSTREAM_H
#define CLIPPARSER_FOUNDATION_OXSTREAM_H

#include <algorithm>

#include "foundation/Export.h"
#include "foundation/OxObject.h"
#include "foundation/OxSharedPtr.h"

// Where an offset counts from. A plain number, because hosts pass it as one.
using OxStream_Seek_Origin = int;
constexpr OxStream_Seek_Origin kOxStreamSeekFromStart = 0;
constexpr OxStream_Seek_Origin kOxStreamSeekFromCurrent = 1;
constexpr OxStream_Seek_Origin kOxStreamSeekFromEnd = 2;

// A run of bytes: where it begins, and how many bytes it has.
struct _OxRange {
  unsigned long long location;  // offset of the first byte
  unsigned long long length;    // bytes
};

struct CFData;  // a platform's data object; the library only passes pointers to it on

// A stream of bytes that is read at absolute positions. CacheFileStream reads a file, OxMemoryStream bytes in memory.
//
// A derived class sets the length once, with SetLength, before anything is read; it overrides Read, and CanRead and
// CanSeek when they are true.
// Threads: the derived class says.
class CLIPPARSER_EXPORT OxStream : public OxObject {
 public:
  ~OxStream() override;

  virtual bool CanRead();   // false in the base
  virtual bool CanWrite();  // false: the library only reads
  virtual bool CanSeek();   // false in the base

  // Reads up to `size` bytes at `offset`, counted from `origin`, into `buffer`. Returns the number of bytes read, less
  // than `size` where the stream ends, 0 on any failure.
  virtual long long Read(unsigned char* buffer, unsigned long long size, long long offset,
                         OxStream_Seek_Origin origin) = 0;
  // Writes nothing and returns 0.
  virtual long long Write(unsigned char* buffer, unsigned long long size, long long offset,
                          OxStream_Seek_Origin origin);
  // Moves the stream's own position, which reads at absolute offsets do not use, and returns it. No bounds are
  // checked; a stream that cannot seek, or an unknown origin, leaves it where it is.
  virtual long long Seek(long long offset, OxStream_Seek_Origin origin);
  // Writes nothing and returns 0.
  virtual long long WriteCFData(const CFData* data, long long offset, OxStream_Seek_Origin origin);

  using OxObject::operator=;
  // A stream stays what it is: nothing is copied.
  virtual OxStream& operator=(const OxStream&);

  // Total size in bytes.
  [[nodiscard]] unsigned long long Length() const { return m_length; }

  // The part of a wanted read that the stream holds. Length 0 when it starts before the stream or at or beyond its
  // end: a start is never moved, so a read at a wrong place gives nothing rather than other bytes.
  [[nodiscard]] _OxRange CalcReadRange(unsigned long long size, long long offset, OxStream_Seek_Origin origin) const {
    if (origin != kOxStreamSeekFromStart) return CalcReadRangeFrom(origin, size, offset);
    if (offset < 0 || static_cast<unsigned long long>(offset) >= m_length) return {0, 0};
    const auto location = static_cast<unsigned long long>(offset);
    return {location, std::min(size, m_length - location)};
  }

 protected:
  OxStream();
  OxStream(const OxStream&) = delete;

  // For derived classes: once, before anything is read.
  void SetLength(unsigned long long length) { m_length = length; }

  long long m_position = 0;  // of Seek, and of reads that count from it

 private:
  // For the other origins.
  [[nodiscard]] _OxRange CalcReadRangeFrom(OxStream_Seek_Origin origin, unsigned long long size,
                                           long long offset) const;

  unsigned long long m_length = 0;
};

#endif  // CLIPPARSER_FOUNDATION_OXSTREAM_H
