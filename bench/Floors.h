#ifndef CLIPPARSER_BENCH_FLOORS_H
#define CLIPPARSER_BENCH_FLOORS_H

#include <string>
#include <vector>

#include "bench/Clips.h"

// The least that the same work can cost: no parsing, every place known beforehand.
namespace bench {

// The floor of one system call for each range. Failures throw std::runtime_error.
class PreadFloor {
 public:
  explicit PreadFloor(const std::string& path);
  ~PreadFloor();
  PreadFloor(const PreadFloor&) = delete;
  PreadFloor& operator=(const PreadFloor&) = delete;

  // One system call; fewer bytes than asked for where the file ends.
  void Read(const Range& range, unsigned char* buffer) const;

 private:
  int m_descriptor;
};

// Through aligned blocks of 64 KiB of which the last one is kept: the least that a block cache must do.
class BlockFloor {
 public:
  explicit BlockFloor(const std::string& path);
  void Read(const Range& range, unsigned char* buffer);

 private:
  PreadFloor m_file;
  std::vector<unsigned char> m_block;
  std::uint64_t m_base;
};

}  // namespace bench

#endif  // CLIPPARSER_BENCH_FLOORS_H
