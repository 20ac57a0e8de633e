#include "bench/Floors.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace bench {
namespace {

constexpr std::size_t kBlockSize = 65536;
constexpr std::uint64_t kNoBlock = ~std::uint64_t{0};

}  // namespace

PreadFloor::PreadFloor(const std::string& path) : m_descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
  if (m_descriptor < 0) throw std::runtime_error("no file " + path);
}

PreadFloor::~PreadFloor() { ::close(m_descriptor); }

void PreadFloor::Read(const Range& range, unsigned char* buffer) const {
  if (::pread(m_descriptor, buffer, range.size, static_cast<off_t>(range.offset)) <= 0)
    throw std::runtime_error("pread fails");
}

BlockFloor::BlockFloor(const std::string& path) : m_file(path), m_block(kBlockSize), m_base(kNoBlock) {}

void BlockFloor::Read(const Range& range, unsigned char* buffer) {
  for (std::size_t done = 0; done < range.size;) {
    const std::uint64_t offset = range.offset + done;
    const std::uint64_t base = offset - offset % kBlockSize;
    if (base != m_base) m_file.Read({base, kBlockSize}, m_block.data());
    m_base = base;
    const std::size_t count = std::min<std::size_t>(base + kBlockSize - offset, range.size - done);
    std::memcpy(buffer + done, m_block.data() + (offset - base), count);
    done += count;
  }
}

}  // namespace bench
