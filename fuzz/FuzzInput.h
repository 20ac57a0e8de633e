#ifndef CLIPPARSER_FUZZ_FUZZINPUT_H
#define CLIPPARSER_FUZZ_FUZZINPUT_H

#include <cstddef>
#include <cstdint>

#include "foundation/OxMemoryStream.h"
#include "klv/KLVPacket.h"

// The one operation that every target defines; libFuzzer calls it, and so does the replay without clang.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

// The fuzzer's bytes, as a stream and as a source of choices.
class FuzzInput {
 public:
  FuzzInput(const std::uint8_t* data, std::size_t size) : m_data(data), m_size(size) {}

  // A choice in [0, count); 0 when the bytes are used up.
  unsigned int Choose(unsigned int count) { return Byte() % count; }
  std::uint8_t Byte() { return m_size == 0 ? std::uint8_t{0} : (--m_size, *m_data++); }
  std::uint64_t Number() {
    std::uint64_t number = 0;
    for (int i = 0; i < 8; ++i) number = number << 8 | Byte();
    return number;
  }
  bool isEmpty() const { return m_size == 0; }

  OxSharedPtr<OxStream> Stream() const {
    return OxSharedPtr<OxStream>(new OxMemoryStream(const_cast<std::uint8_t*>(m_data), m_size, false));
  }

 private:
  const std::uint8_t* m_data;
  std::size_t m_size;
};

// Reads a whole packet from the start of the bytes; false when it is none of its kind or malformed.
template <class Packet>
bool ParseAs(Packet& packet, const std::uint8_t* data, std::size_t size) {
  ParseMetaData reader(FuzzInput(data, size).Stream());
  return reader.ParsePacket(&packet);
}

#endif  // CLIPPARSER_FUZZ_FUZZINPUT_H
