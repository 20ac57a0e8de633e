#ifndef CLIPPARSER_FOUNDATION_OXMEMORYSTREAM_H
#define CLIPPARSER_FOUNDATION_OXMEMORYSTREAM_H

#include <memory>

#include "foundation/OxStream.h"

// A stream over bytes in memory, which it owns: the bytes given are copied and may go at once.
// Threads: reads from the start (origin 0) touch no shared state and need no lock; the rest is not synchronised.
class CLIPPARSER_EXPORT OxMemoryStream : public OxStream {
 public:
  // Copies `size` bytes from `data`; null gives an empty stream. The third argument changes nothing: the bytes are
  // copied either way.
  OxMemoryStream(const void* data, unsigned long long size, bool);
  ~OxMemoryStream() override;
  OxMemoryStream(const OxMemoryStream&) = delete;
  using OxStream::operator=;
  OxMemoryStream& operator=(const OxMemoryStream&) = delete;

  // A copy of the bytes of `range` in `source`. A length of 0 inside the source gives an empty stream; an empty
  // pointer when there is no source, the range does not lie wholly inside it, it cannot be read, or memory is short.
  static OxSharedPtr<OxMemoryStream> CreateMemoryStreamPtr(OxSharedPtr<OxStream> source, _OxRange& range);

  bool CanRead() override;
  bool CanSeek() override;
  long long Read(unsigned char* buffer, unsigned long long size, long long offset,
                 OxStream_Seek_Origin origin) override;

  // The stream's bytes, valid as long as the stream.
  [[nodiscard]] const unsigned char* Bytes() const { return m_bytes.get(); }

 private:
  OxMemoryStream(std::unique_ptr<unsigned char[]> bytes, unsigned long long size);

  std::unique_ptr<unsigned char[]> m_bytes;
};

#endif  // CLIPPARSER_FOUNDATION_OXMEMORYSTREAM_H
