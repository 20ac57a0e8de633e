#ifndef CLIPPARSER_FUZZ_FUZZ_H
#define CLIPPARSER_FUZZ_FUZZ_H

#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "klv/KLVPacket.h"
#include "tests/support/AskEverything.h"

// What the targets share. Each defines LLVMFuzzerTestOneInput over bytes of its own kind, which are said at its top.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

// An answer that is wrong, rather than an access that a sanitizer sees.
#define MUST(condition)                                                            \
  do {                                                                             \
    if (!(condition)) {                                                            \
      std::fprintf(stderr, "%s:%d: not so: %s\n", __FILE__, __LINE__, #condition); \
      std::abort();                                                                \
    }                                                                              \
  } while (false)

inline OxSharedPtr<OxStream> StreamOf(const std::uint8_t* data, std::size_t size) {
  return OxSharedPtr<OxMemoryStream>(new OxMemoryStream(data, size, false));
}

// Objects that were handed out are whole when they can be rendered.
template <class... Object>
void Render(const OxSharedPtr<Object>&... objects) {
  (static_cast<void>(DigestOf(objects)), ...);
}

// Bytes that drive a sequence of calls; zeros when they are used up.
class Script {
 public:
  Script(const std::uint8_t* data, std::size_t size) : m_data(data), m_size(size) {}

  bool isOver() const { return m_size == 0; }
  unsigned int Byte() {
    if (isOver()) return 0;
    --m_size;
    return *m_data++;
  }
  // Mostly small, since numbers must meet for something to happen; else whole words, or next to the ends of their
  // range.
  long long Number() {
    const unsigned int byte = Byte();
    if (byte < 0xF0) return byte;
    unsigned long long word = 0;
    for (int i = 0; byte == 0xF0 && i < 8; ++i) word = word << 8 | Byte();
    if (byte > 0xF0) word = (1ULL << (byte % 2 == 0 ? 63 : 32)) + byte - 0xF8;
    return static_cast<long long>(word);
  }

 private:
  const std::uint8_t* m_data;
  std::size_t m_size;
};

// One packet as in a file: key, length, value. Imported twice, since an object may be used again, whatever its key
// says it is; then every query of its kind is asked.
template <class P, class Ask>
int ImportAndAsk(const std::uint8_t* data, std::size_t size, Ask ask) {
  const OxSharedPtr<OxStream> stream = StreamOf(data, size);
  ParseMetaData reader(stream);
  const OxSharedPtr<P> packet(new P);
  if (reader.ReadKeyAndLength(packet.get()) != PacketHead::Read) return 0;
  const unsigned int status = packet->Import(stream);
  const unsigned long long digest = DigestOf(packet);
  MUST(packet->Import(stream) == status && DigestOf(packet) == digest);
  MUST(packet->Import({}, 0) != kStatusOK);
  static_cast<void>(packet->Import(stream));
  ask(*packet);
  return 0;
}

#endif  // CLIPPARSER_FUZZ_FUZZ_H
