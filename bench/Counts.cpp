#include <unistd.h>

#include <functional>
#include <iostream>

#include "bench/Clips.h"
#include "bench/Table.h"
#include "cache/ReadOnlyFile.h"

// What the library asks of the operating system, exactly: the same numbers on any machine.
namespace bench {
namespace {

struct Count {
  std::uint64_t reads = 0;
  std::uint64_t bytes = 0;
};

Count g_count;

long long CountedPread(int descriptor, void* buffer, unsigned long long count, long long offset) {
  const long long result = ::pread(descriptor, buffer, count, offset);
  ++g_count.reads;
  if (result > 0) g_count.bytes += static_cast<std::uint64_t>(result);
  return result;
}

Count CountReads(const std::function<void()>& work) {
  const ReadOnlyFile::SystemCalls former = ReadOnlyFile::UseSystemCalls({});
  ReadOnlyFile::SystemCalls counted = former;
  counted.pread = CountedPread;
  ReadOnlyFile::UseSystemCalls(counted);
  g_count = {};
  work();
  ReadOnlyFile::UseSystemCalls(former);
  return g_count;
}

std::uint64_t SizeOf(const std::vector<Range>& ranges) {
  std::uint64_t size = 0;
  for (const Range& range : ranges) size += range.size;
  return size;
}

void ReadAll(MXFStream& clip, const std::vector<unsigned int>& units, unsigned int first) {
  std::vector<unsigned char> buffer(kLargestElement);
  for (const unsigned int unit : units) ReadElements(clip, unit, first, buffer);
}

void FindPictures(MXFStream& clip, const std::vector<unsigned int>& units) {
  for (const unsigned int unit : units) static_cast<void>(clip.RangeEssenceData(unit, kPicture));
}

class CountTable {
 public:
  // `needed`: the bytes that the answer is made of.
  void Add(const std::string& name, const std::function<void()>& work, std::uint64_t needed, const char* target = "-") {
    const Count count = CountReads(work);
    m_table.Row({name, std::to_string(count.reads), BytesText(static_cast<double>(count.bytes)),
                 BytesText(static_cast<double>(needed)), target});
  }

 private:
  Table m_table{std::cout, {"counted", "file reads", "bytes read", "bytes needed", "to reach"}};
};

void PrintCounts(const Clips& clips) {
  CountTable table;
  const auto open = [&table](const char* name, const BenchClip& clip, const char* target) {
    table.Add(
        std::string("open until the first essence offset, ") + name,
        [&clip] { static_cast<void>(clip.OpenWithIndexes(1)); }, SizeOf(clip.OpeningRanges()), target);
  };
  open("A", clips.a, "<= 8 reads");
  open("C", clips.c, "<= 8 reads");
  open("D", clips.d, "<= 8 reads");
  open("E", clips.e, "-");
  open("F", clips.f, "-");
  table.Add(
      "open C and load every index", [&] { static_cast<void>(clips.c.OpenWithIndexes()); },
      SizeOf(clips.c.OpeningAndIndexRanges()));

  const auto b = clips.b.OpenWithIndexes();
  const std::vector<unsigned int> every = EveryUnit(clips.b);
  const std::vector<unsigned int> random = RandomUnits(clips.b, 1000);
  table.Add(
      "every element of B in order", [&] { ReadAll(*b, every, kSystemItem); },
      SizeOf(clips.b.Elements(every, kSystemItem)));
  table.Add(
      "1,000 random frames of B", [&] { ReadAll(*b, random, kPicture); }, SizeOf(clips.b.Elements(random, kPicture)));
  constexpr unsigned int kHead = 16 + 4;  // key and length
  table.Add(
      "the range of every picture of B", [&] { FindPictures(*b, every); }, kHead * every.size());
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: clip_counts FOLDER\n";
    return 2;
  }
  try {
    bench::PrintCounts(bench::Clips(argv[1]));
  } catch (const std::exception& error) {
    std::cerr << "clip_counts: " << error.what() << '\n';
    return 1;
  }
  return 0;
}
