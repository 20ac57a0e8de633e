#include <benchmark/benchmark.h>

#include <iostream>

#include "bench/Suite.h"

// Times the library beside the least that the same work can cost: clip_benchmark [--benchmark_...] FOLDER.
// Clips that the folder lacks are written to it.
int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (argc != 2) {
    std::cerr << "usage: clip_benchmark [--benchmark_repetitions=N ...] FOLDER\n";
    return 2;
  }
  try {
    const bench::Clips clips(argv[1]);
    bench::Suite suite;
    bench::AddMemoryMeasures(suite, clips);  // first, while the library is untouched
    bench::AddOpeningMeasures(suite, clips);
    bench::AddLookupMeasures(suite, clips);
    bench::AddEssenceMeasures(suite, clips);
    bench::AddSmallReadMeasures(suite, clips);
    bench::AddThreadMeasures(suite, clips);
    bench::AddProcessMeasures(suite, clips);
    suite.Run();
  } catch (const std::exception& error) {
    std::cerr << "clip_benchmark: " << error.what() << '\n';
    return 1;
  }
  return 0;
}
