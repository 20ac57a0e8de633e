#include "foundation/OxMemoryStream.h"

#include <cstring>
#include <new>
#include <utility>

#include "foundation/CopyBytes.h"

OxMemoryStream::OxMemoryStream(const void* data, unsigned long long size, bool)
    : OxMemoryStream(data != nullptr ? std::unique_ptr<unsigned char[]>(new unsigned char[size]) : nullptr,
                     data != nullptr ? size : 0) {
  if (Length() > 0) std::memcpy(m_bytes.get(), data, Length());
}

OxMemoryStream::OxMemoryStream(std::unique_ptr<unsigned char[]> bytes, unsigned long long size)
    : m_bytes(std::move(bytes)) {
  SetLength(size);
}

OxMemoryStream::~OxMemoryStream() = default;

OxSharedPtr<OxMemoryStream> OxMemoryStream::CreateMemoryStreamPtr(OxSharedPtr<OxStream> source, _OxRange& range) {
  // The bounds come first: memory is taken only for bytes that the source has.
  if (!source || range.location > source->Length() || range.length > source->Length() - range.location) return {};
  std::unique_ptr<unsigned char[]> bytes(new (std::nothrow) unsigned char[range.length]);
  if (!bytes) return {};
  if (range.length > 0) {
    const long long count =
        source->Read(bytes.get(), range.length, static_cast<long long>(range.location), kOxStreamSeekFromStart);
    if (count < 0 || static_cast<unsigned long long>(count) != range.length) return {};
  }
  return OxSharedPtr<OxMemoryStream>(new OxMemoryStream(std::move(bytes), range.length));
}

bool OxMemoryStream::CanRead() { return true; }

bool OxMemoryStream::CanSeek() { return true; }

long long OxMemoryStream::Read(unsigned char* buffer, unsigned long long size, long long offset,
                               OxStream_Seek_Origin origin) {
  if (buffer == nullptr) return 0;
  const _OxRange range = CalcReadRange(size, offset, origin);
  if (range.length == 0) return 0;
  CopyBytes(buffer, m_bytes.get() + range.location, range.length);
  if (origin != kOxStreamSeekFromStart) m_position = static_cast<long long>(range.location + range.length);
  return static_cast<long long>(range.length);
}
