#ifndef CLIPPARSER_BENCH_SUITE_H
#define CLIPPARSER_BENCH_SUITE_H

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "bench/Clips.h"

namespace bench {

// One round of some work; returns what it cost, in seconds or bytes.
using Sample = std::function<double()>;

// The time that `work` takes.
template <class Work>
Sample Timed(Work work) {
  return [work]() mutable {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  };
}

// The work and what it is measured beside, if anything, with the number of operations in a round of each.
struct Contest {
  explicit Contest(Sample itsWork, double itsOperations = 1, Sample itsFloor = nullptr, double itsFloorOperations = 1)
      : work(std::move(itsWork)),
        operations(itsOperations),
        floor(std::move(itsFloor)),
        floorOperations(itsFloorOperations) {}

  Sample work;
  double operations;
  Sample floor;
  double floorOperations;
};

enum class Unit { Seconds, Bytes };

// What an operation is to cost: so many times the floor, so many times less than the floor, so much in itself.
struct Target {
  enum class Of { Nothing, Ratio, SpeedUp, Cost } of = Of::Nothing;
  double bound = 0;
};

struct Row {
  std::string name;
  std::string floor;  // its name; empty when there is none
  Target target = {};
  Unit unit = Unit::Seconds;
};

// The measures and the table of their figures. Work and floor run in turn, so that a change of the machine's speed
// meets both; a figure is the median over the rounds of a repetition, then over the repetitions that the command line
// asks for.
class Suite {
 public:
  // `prepare` is called before each repetition, and what it makes ends with it.
  void Add(const Row& row, const std::function<Contest()>& prepare);
  // Runs what was added in that order, and prints a row for each as soon as it is known.
  void Run();

 private:
  std::vector<Row> m_rows;
};

void AddMemoryMeasures(Suite& suite, const Clips& clips);
void AddOpeningMeasures(Suite& suite, const Clips& clips);
void AddLookupMeasures(Suite& suite, const Clips& clips);
void AddEssenceMeasures(Suite& suite, const Clips& clips);
void AddSmallReadMeasures(Suite& suite, const Clips& clips);
void AddThreadMeasures(Suite& suite, const Clips& clips);
void AddProcessMeasures(Suite& suite, const Clips& clips);

}  // namespace bench

#endif  // CLIPPARSER_BENCH_SUITE_H
