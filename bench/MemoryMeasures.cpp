#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <stdexcept>

#include "bench/Suite.h"

namespace bench {
namespace {

using Of = Target::Of;
using Use = std::function<std::unique_ptr<MXFStream>()>;

constexpr double kMiB = 1024.0 * 1024;

// Of the process's own memory. The code of the library, some 600 KiB, is shared with all who use it.
double ResidentBytes() {
  std::ifstream file("/proc/self/status");
  double kilobytes = 0;
  for (std::string word; file >> word && word != "RssAnon:";) continue;
  file >> kilobytes;
  return 1024 * kilobytes;
}

double GrowthHere(const Use& use) {
  ::malloc_trim(0);  // memory freed earlier would hide growth
  const double before = ResidentBytes();
  const auto clip = use();
  return ResidentBytes() - before;
}

// By how much the resident memory of a fresh process grows while a clip is open. The library must not have been used
// in this process: a child would have the pool already.
double ResidentGrowth(const Use& use) {
  int ends[2];
  if (::pipe(ends) != 0) throw std::runtime_error("no pipe");
  const pid_t child = ::fork();
  if (child < 0) throw std::runtime_error("no process");
  double growth = 0;
  if (child == 0) {
    growth = GrowthHere(use);
    ::_exit(::write(ends[1], &growth, sizeof growth) == sizeof growth ? 0 : 1);
  }
  ::close(ends[1]);
  const bool isTold = ::read(ends[0], &growth, sizeof growth) == sizeof growth;
  ::close(ends[0]);
  ::waitpid(child, nullptr, 0);
  if (!isTold) throw std::runtime_error("the child failed");
  return growth;
}

std::unique_ptr<MXFStream> ReadUnits(const BenchClip& clip, const std::vector<unsigned int>& units) {
  auto stream = clip.Open();
  std::vector<unsigned char> buffer(kLargestElement);
  for (const unsigned int unit : units) ReadElements(*stream, unit, kSystemItem, buffer);
  return stream;
}

// What each edit unit adds, from a tenth of the indexes loaded, when all blocks are in use, to all of them.
double BytesPerUnit(const BenchClip& clip) {
  const std::size_t all = clip.BodyPartitions();
  const double part = ResidentGrowth([&clip, all] { return clip.OpenWithIndexes(all / 10); });
  const double whole = ResidentGrowth([&clip, all] { return clip.OpenWithIndexes(all); });
  return (whole - part) / (0.9 * clip.Units());
}

}  // namespace

void AddMemoryMeasures(Suite& suite, const Clips& clips) {
  const auto add = [&suite](const std::string& name, double bound, const Sample& sample) {
    suite.Add({name, "", {Of::Cost, bound}, Unit::Bytes}, [sample] { return Contest{sample}; });
  };
  add("resident growth of one clip, in order, B", 5 * kMiB,
      [&clips] { return ResidentGrowth([&clips] { return ReadUnits(clips.b, EveryUnit(clips.b)); }); });
  add("resident growth of one clip, at random, B", 5 * kMiB,
      [&clips] { return ResidentGrowth([&clips] { return ReadUnits(clips.b, RandomUnits(clips.b, 2000)); }); });
  add("the same for an edit unit of loaded index, D", 12, [&clips] { return BytesPerUnit(clips.d); });
}

}  // namespace bench
