#include "foundation/OxStream.h"

namespace {

// Two's-complement sum: Seek checks no bounds, and a position that wraps is one that no read accepts.
long long WrappingSum(long long a, long long b) {
  return static_cast<long long>(static_cast<unsigned long long>(a) + static_cast<unsigned long long>(b));
}

}  // namespace

OxStream::OxStream() = default;

OxStream::~OxStream() = default;

bool OxStream::CanRead() { return false; }

bool OxStream::CanWrite() { return false; }

bool OxStream::CanSeek() { return false; }

long long OxStream::Write(unsigned char*, unsigned long long, long long, OxStream_Seek_Origin) { return 0; }

long long OxStream::Seek(long long offset, OxStream_Seek_Origin origin) {
  if (!CanSeek()) return m_position;
  if (origin == kOxStreamSeekFromStart) m_position = offset;
  if (origin == kOxStreamSeekFromCurrent) m_position = WrappingSum(m_position, offset);
  if (origin == kOxStreamSeekFromEnd) m_position = WrappingSum(static_cast<long long>(m_length), offset);
  return m_position;
}

long long OxStream::WriteCFData(const CFData*, long long, OxStream_Seek_Origin) { return 0; }

OxStream& OxStream::operator=(const OxStream&) { return *this; }

_OxRange OxStream::CalcReadRangeFrom(OxStream_Seek_Origin origin, unsigned long long size, long long offset) const {
  if (origin != kOxStreamSeekFromCurrent && origin != kOxStreamSeekFromEnd) return {0, 0};
  const long long from = origin == kOxStreamSeekFromCurrent ? m_position : static_cast<long long>(m_length);
  return CalcReadRange(size, WrappingSum(from, offset), kOxStreamSeekFromStart);
}
