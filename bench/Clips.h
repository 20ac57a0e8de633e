#ifndef CLIPPARSER_BENCH_CLIPS_H
#define CLIPPARSER_BENCH_CLIPS_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "stream/MXFStream.h"
#include "tests/support/ClipWriter.h"

namespace bench {

// Bytes of a file.
struct Range {
  std::uint64_t offset;
  std::size_t size;
};

// Bytes that hold any element of the clips.
constexpr unsigned int kLargestElement = 256 * 1024;

// Elements of a content package.
constexpr unsigned int kSystemItem = 0;
constexpr unsigned int kPicture = 1;
constexpr unsigned int kElementCount = 4;

// One clip, written if it is not there yet. Where its parts lie is computed, not read.
class BenchClip {
 public:
  BenchClip(const std::string& path, const clipwriter::ClipOptions& options);

  // The clip as a host opens it; throws std::runtime_error when the library cannot.
  [[nodiscard]] std::unique_ptr<MXFStream> Open() const;
  // The same with the indexes of the first `partitions` body partitions loaded.
  [[nodiscard]] std::unique_ptr<MXFStream> OpenWithIndexes(std::size_t partitions) const;
  [[nodiscard]] std::unique_ptr<MXFStream> OpenWithIndexes() const { return OpenWithIndexes(BodyPartitions()); }

  [[nodiscard]] const std::string& Path() const { return m_path; }
  [[nodiscard]] unsigned int Units() const { return static_cast<unsigned int>(m_layout.units); }
  [[nodiscard]] std::size_t BodyPartitions() const { return m_layout.partitions.size() - 2; }
  // The edit unit at which each index table segment starts.
  [[nodiscard]] std::vector<unsigned int> FirstUnits() const;

  // Key, length and value of each element from `first` on of the edit units.
  [[nodiscard]] std::vector<Range> Elements(const std::vector<unsigned int>& units, unsigned int first) const;
  // What has to be read until the place of the first picture is known.
  [[nodiscard]] std::vector<Range> OpeningRanges() const;
  // The same, and then all that is needed for every other edit unit.
  [[nodiscard]] std::vector<Range> OpeningAndIndexRanges() const;

 private:
  [[nodiscard]] Range PartitionPack(std::size_t partition) const;
  [[nodiscard]] Range PackAndIndex(std::size_t partition) const;

  std::string m_path;
  clipwriter::Clip m_layout;
};

// The clips of all measures, in one folder that belongs to the caller. Pictures have 40 to 180 KB by type of frame.
// Some 760 MB in all; the clips but B have holes where the essence of most edit units would be.
//   A  600 edit units in 3 body partitions
//   B  7,200 in 30, essence in full
//   C  7,200 in 600
//   D  1,000,000 in 10,000
//   E  7,200 in one, the index in the header (version 1.3), 12 segments
//   F  25, with 4,095 packages and as many components in the header
struct Clips {
  explicit Clips(const std::string& folder);

  BenchClip a, b, c, d, e, f;
};

std::vector<unsigned int> EveryUnit(const BenchClip& clip);
// Edit units in no order, the same in each run.
std::vector<unsigned int> RandomUnits(const BenchClip& clip, std::size_t count);

// Reads the elements from `first` on of an edit unit, each to the start of the buffer.
void ReadElements(MXFStream& clip, unsigned int unit, unsigned int first, std::vector<unsigned char>& buffer);

}  // namespace bench

#endif  // CLIPPARSER_BENCH_CLIPS_H
