#ifndef CLIPPARSER_TESTS_SUPPORT_BYTES_H
#define CLIPPARSER_TESTS_SUPPORT_BYTES_H

#include <algorithm>
#include <cstring>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "klv/KLVPacket.h"

// Packets and fields, byte by byte and big-endian. Nothing here is taken from the library, whose mistakes would cancel
// out; and whatever says how long or how many something is can be made to lie.
class Bytes {
 public:
  Bytes() = default;
  Bytes(std::initializer_list<int> bytes) {
    for (const int byte : bytes) U8(static_cast<unsigned int>(byte));
  }

  Bytes& U8(unsigned long long value) { return Number(value, 1); }
  Bytes& U16(unsigned long long value) { return Number(value, 2); }
  Bytes& U32(unsigned long long value) { return Number(value, 4); }
  Bytes& U64(unsigned long long value) { return Number(value, 8); }
  Bytes& Raw(const Bytes& other) {
    m_bytes.insert(m_bytes.end(), other.m_bytes.begin(), other.m_bytes.end());
    return *this;
  }
  Bytes& Fill(std::size_t count, unsigned char value = 0) {
    m_bytes.resize(Size() + count, value);
    return *this;
  }
  // An item of a local set with 2-byte tags and lengths.
  Bytes& Item(unsigned int tag, const Bytes& value, std::optional<std::size_t> declaredLength = {}) {
    return U16(tag).U16(declaredLength.value_or(value.Size())).Raw(value);
  }

  Bytes First(std::size_t count) const { return Bytes(*this).Truncate(count); }
  Bytes& Truncate(std::size_t count) {
    m_bytes.resize(count);
    return *this;
  }
  std::size_t Size() const { return m_bytes.size(); }
  unsigned char* Data() { return m_bytes.data(); }
  OxSharedPtr<OxMemoryStream> Stream() const {
    Bytes copy = Bytes(*this).Fill(1);  // without bytes there would be nothing to point at
    return OxSharedPtr<OxMemoryStream>(new OxMemoryStream(copy.Data(), Size(), false));
  }

 private:
  Bytes& Number(unsigned long long value, int size) {
    while (size-- > 0) m_bytes.push_back(static_cast<unsigned char>(value >> (8 * size)));
    return *this;
  }

  std::vector<unsigned char> m_bytes;
};

// 16 bytes as two words; a reference that is no label; a basic UMID.
inline Bytes Label(unsigned long long high, unsigned long long low) { return Bytes().U64(high).U64(low); }
inline Bytes Uid(unsigned long long number) { return Label(0xA000000000000000, number); }
inline Bytes Umid(unsigned long long number) {
  return Label(0x060A2B3401010105, 0x01010F0013000000).U64(0).U64(number);
}

inline Bytes SetKey(unsigned int kind) { return Label(0x060E2B3402530101, 0x0D01010101000000 | kind << 8); }
inline const Bytes kHeaderPackKey = Label(0x060E2B3402050101, 0x0D01020101020400);
inline const Bytes kPrimerPackKey = Label(0x060E2B3402050101, 0x0D01020101050100);
inline const Bytes kRandomIndexPackKey = Label(0x060E2B3402050101, 0x0D01020101110100);
inline const Bytes kIndexSegmentKey = Label(0x060E2B3402530101, 0x0D01020101100100);

// The length field of a packet made here always has 5 bytes.
inline Bytes Packet(const Bytes& key, const Bytes& value, std::optional<std::size_t> declaredLength = {}) {
  return Bytes(key).U8(0x84).U32(declaredLength.value_or(value.Size())).Raw(value);
}
inline Bytes Batch(unsigned int count, unsigned int itemSize, const Bytes& items = {}) {
  return Bytes().U32(count).U32(itemSize).Raw(items);
}
inline Bytes References(std::initializer_list<unsigned long long> uids) {
  Bytes items;
  for (const unsigned long long uid : uids) items.Raw(Uid(uid));
  return Batch(static_cast<unsigned int>(uids.size()), 16, items);
}

// A packet object as it is after its key and length were read; one that was imported, or none when that failed.
template <class P>
OxSharedPtr<P> PacketFor(Bytes key, unsigned long long length) {
  OxSharedPtr<P> packet(new P);
  const MxfUUID uuid(key.Data());
  packet->SetKey(&uuid);
  packet->SetLength(length);
  return packet;
}
template <class P>
OxSharedPtr<P> Imported(const Bytes& key, const Bytes& value) {
  const OxSharedPtr<P> packet = PacketFor<P>(key, value.Size());
  return packet->Import(value.Stream(), 0) == kStatusOK ? packet : OxSharedPtr<P>();
}

// A stream that counts its reads and, at one of them (from 1), comes up one byte short.
class UnsoundStream : public OxStream {
 public:
  explicit UnsoundStream(const Bytes& bytes, int shortRead = 0) : m_bytes(bytes), m_shortRead(shortRead) {
    SetLength(m_bytes.Size());
  }
  using OxStream::operator=;

  long long Read(unsigned char* buffer, unsigned long long size, long long offset, OxStream_Seek_Origin) override {
    ++reads;
    const auto start = static_cast<unsigned long long>(offset);
    if (start >= m_bytes.Size()) return 0;
    const unsigned long long count = std::min(size, m_bytes.Size() - start) - (reads == m_shortRead ? 1 : 0);
    std::memcpy(buffer, m_bytes.Data() + start, count);
    return static_cast<long long>(count);
  }

  int reads = 0;

 private:
  Bytes m_bytes;
  int m_shortRead;
};

inline std::string Text(const OxSharedPtr<OxObject>& object) {
  if (!object) return "(none)";
  const OxSharedPtr<OxStringMac> text = object->Description();
  return std::string(text->UTF8String(), text->ByteCount());
}

// What `call` throws; empty when it throws nothing.
template <class Call>
std::string Thrown(Call call) {
  try {
    static_cast<void>(call());
  } catch (const char* text) {
    return text;
  }
  return "";
}

#endif  // CLIPPARSER_TESTS_SUPPORT_BYTES_H
