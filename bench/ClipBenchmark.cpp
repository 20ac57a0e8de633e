#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <functional>
#include <memory>
#include <random>
#include <stdexcept>
#include <vector>

#include "cache/CacheFileStream.h"
#include "cache/ReadOnlyFile.h"
#include "stream/MXFStream.h"
#include "tests/support/ClipWriter.h"

// What the library costs beside the least that the same work can cost: the same bytes read with plain pread calls. Both
// are timed in turn in every iteration, so that a change of the machine's speed meets both; "ratio" is the library's
// time over the floor's. Times without a floor are for comparison on one machine only.
namespace {

constexpr std::size_t kBlock = 65536;

// A clip of some 100 MB in ten body partitions, written for the run.
class BenchClip {
 public:
  BenchClip() : m_truth(clipwriter::WriteClipFile(Options(), m_path)) {
    m_descriptor = ::open(m_path.c_str(), O_RDONLY | O_CLOEXEC);
    if (m_descriptor < 0) throw std::runtime_error("the clip cannot be read");
  }
  ~BenchClip() {
    ::close(m_descriptor);
    std::filesystem::remove(m_path);
  }
  BenchClip(const BenchClip&) = delete;
  BenchClip& operator=(const BenchClip&) = delete;

  [[nodiscard]] std::unique_ptr<MXFStream> Open() const {
    auto clip = std::make_unique<MXFStream>(CreateOxString(m_path));
    if (clip->Parse() != kStatusOK) throw std::runtime_error("the clip cannot be opened");
    return clip;
  }
  [[nodiscard]] OxSharedPtr<OxStream> Stream() const { return CacheFileStream::Create(CreateOxString(m_path)); }
  [[nodiscard]] const clipwriter::Clip& Truth() const { return m_truth; }
  [[nodiscard]] unsigned int Units() const { return static_cast<unsigned int>(m_truth.units); }

  // The floor: one call for each range.
  void Pread(std::uint64_t offset, std::size_t size, unsigned char* buffer) const {
    if (::pread(m_descriptor, buffer, size, static_cast<off_t>(offset)) < 0) throw std::runtime_error("pread");
  }

 private:
  static clipwriter::ClipOptions Options() {
    clipwriter::ClipOptions options;
    options.partitionUnits.assign(10, 150);
    options.intraBytes = 200000;
    options.predictedBytes = 90000;
    options.bidirectionalBytes = 40000;
    return options;
  }

  std::string m_path = (std::filesystem::temp_directory_path() / "clip-benchmark.mxf").string();
  clipwriter::Clip m_truth;
  int m_descriptor = -1;
};

BenchClip& TheClip() {
  static BenchClip clip;
  return clip;
}

double Seconds(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Times both in turn.
void RunBesideFloor(benchmark::State& state, const std::function<void()>& work, const std::function<void()>& floor) {
  double total = 0;
  double floorTotal = 0;
  for ([[maybe_unused]] auto iteration : state) {
    floorTotal += Seconds(floor);
    const double seconds = Seconds(work);
    state.SetIterationTime(seconds);
    total += seconds;
  }
  state.counters["ratio"] = total / floorTotal;
}

long long g_preads = 0;

long long CountedPread(int descriptor, void* buffer, unsigned long long count, long long offset) {
  ++g_preads;
  return ::pread(descriptor, buffer, count, offset);
}

// The file reads that `work` takes, exactly.
double CountPreads(const std::function<void()>& work) {
  ReadOnlyFile::SystemCalls calls = ReadOnlyFile::UseSystemCalls({});
  ReadOnlyFile::SystemCalls counted = calls;
  counted.pread = CountedPread;
  ReadOnlyFile::UseSystemCalls(counted);
  g_preads = 0;
  work();
  ReadOnlyFile::UseSystemCalls(calls);
  return static_cast<double>(g_preads);
}

// From nothing to the place of the first picture; the floor reads the blocks that hold what is needed for it.
void OpenUntilFirstOffset(benchmark::State& state) {
  const BenchClip& clip = TheClip();
  const auto open = [&clip] {
    unsigned long long offset = 0;
    benchmark::DoNotOptimize(clip.Open()->GetEssenceOffset(0, 1, offset));
  };
  const double preads = CountPreads(open);
  const auto& partitions = clip.Truth().partitions;
  const std::uint64_t needed[] = {clip.Truth().length - 1, 0, partitions[1].offset, partitions[2].offset};
  std::vector<unsigned char> block(kBlock);
  RunBesideFloor(state, open, [&] {
    for (const std::uint64_t offset : needed) clip.Pread(offset / kBlock * kBlock, kBlock, block.data());
  });
  state.counters["preads"] = preads;
}
BENCHMARK(OpenUntilFirstOffset)->UseManualTime();

void ReadEveryElementInOrder(benchmark::State& state) {
  const BenchClip& clip = TheClip();
  const auto stream = clip.Open();
  std::vector<unsigned char> buffer(1 << 20);
  const auto each = [&clip](const auto& read) {
    for (unsigned int unit = 0; unit < clip.Units(); ++unit) {
      for (unsigned int element = 0; element < clip.Truth().ElementCount(); ++element) read(unit, element);
    }
  };
  RunBesideFloor(
      state,
      [&] {
        each([&](unsigned int unit, unsigned int element) {
          benchmark::DoNotOptimize(stream->ReadEssenceData(unit, element, buffer.data(), 1 << 20));
        });
      },
      [&] {
        each([&](unsigned int unit, unsigned int element) {
          const clipwriter::Element place = clip.Truth().ElementAt(unit, element);
          clip.Pread(place.valueOffset, place.valueLength, buffer.data());
        });
      });
}
BENCHMARK(ReadEveryElementInOrder)->UseManualTime()->Iterations(7);

// Edit units in no order, from indexes that are loaded.
template <class Ask>
void AskRandomUnits(benchmark::State& state, Ask ask) {
  const auto stream = TheClip().Open();
  std::mt19937 random(1);
  std::vector<unsigned int> units(4096);
  for (unsigned int& unit : units) unit = static_cast<unsigned int>(random() % TheClip().Units());
  for (const unsigned int unit : units) ask(*stream, unit);
  std::size_t next = 0;
  for ([[maybe_unused]] auto iteration : state) ask(*stream, units[next++ % units.size()]);
}

void OffsetOfARandomUnit(benchmark::State& state) {
  AskRandomUnits(state, [](MXFStream& clip, unsigned int unit) {
    unsigned long long offset = 0;
    benchmark::DoNotOptimize(clip.GetEssenceOffset(unit, 1, offset));
  });
}
BENCHMARK(OffsetOfARandomUnit);

void InfoOfARandomUnit(benchmark::State& state) {
  AskRandomUnits(state, [](MXFStream& clip, unsigned int unit) {
    signed char temporal = 0;
    signed char key = 0;
    unsigned char flags = 0;
    benchmark::DoNotOptimize(clip.GetEditUnitInfo(unit, temporal, key, flags));
  });
}
BENCHMARK(InfoOfARandomUnit);

void FourBytes(benchmark::State& state, const OxSharedPtr<OxStream>& stream) {
  ParseMetaData reader(stream);
  unsigned int number = 0;
  for ([[maybe_unused]] auto iteration : state) {
    if (!reader.GetUInt32(&number)) static_cast<void>(reader.SetOffset(0, kOxStreamSeekFromStart));
    benchmark::DoNotOptimize(number);
  }
}

void FourBytesOfAFile(benchmark::State& state) { FourBytes(state, TheClip().Stream()); }
BENCHMARK(FourBytesOfAFile);

void FourBytesInMemory(benchmark::State& state) {
  std::vector<unsigned char> bytes(kBlock);
  FourBytes(state, OxSharedPtr<OxStream>(new OxMemoryStream(bytes.data(), bytes.size(), false)));
}
BENCHMARK(FourBytesInMemory);

}  // namespace

BENCHMARK_MAIN();
