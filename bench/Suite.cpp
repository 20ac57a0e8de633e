#include "bench/Suite.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <iostream>

#include "bench/Table.h"

namespace bench {
namespace {

using Of = Target::Of;

std::string CostText(double cost, Unit unit) { return unit == Unit::Seconds ? SecondsText(cost) : BytesText(cost); }

std::string TargetText(const Row& row) {
  const double bound = row.target.bound;
  if (row.target.of == Of::Nothing) return "-";
  if (row.target.of == Of::SpeedUp) return ">= " + NumberText(bound);
  return "<= " + (row.target.of == Of::Ratio ? NumberText(bound) : CostText(bound, row.unit));
}

std::string ReachedText(const Target& target, double cost, double ratio) {
  if (target.of == Of::Nothing) return "-";
  const bool isReached =
      target.of == Of::SpeedUp ? ratio >= target.bound : (target.of == Of::Ratio ? ratio : cost) <= target.bound;
  return isReached ? "yes" : "no";
}

// The name under which a row's measure is registered.
std::string NameOf(const Row& row) { return row.floor.empty() ? row.name : row.name + ", beside " + row.floor; }

double Median(std::vector<double>& samples) {
  const auto middle = samples.begin() + static_cast<std::ptrdiff_t>(samples.size() / 2);
  std::nth_element(samples.begin(), middle, samples.end());
  return *middle;
}

void Compare(benchmark::State& state, const Contest& contest) {
  std::vector<double> costs;
  std::vector<double> floors;
  for ([[maybe_unused]] auto iteration : state) {
    floors.push_back(contest.floor ? contest.floor() : 0);
    const Sample timed = Timed([&] { costs.push_back(contest.work()); });
    state.SetIterationTime(timed());
  }
  const double cost = Median(costs) / contest.operations;
  const double floor = Median(floors) / contest.floorOperations;
  state.counters["cost"] = cost;
  state.counters["floor"] = floor;
  state.counters["ratio"] = floor > 0 ? cost / floor : 0;
}

// Prints the medians as a table.
class TableReporter : public benchmark::BenchmarkReporter {
 public:
  explicit TableReporter(const std::vector<Row>& rows)
      : m_rows(rows), m_table(std::cout, {"measure", "cost", "beside", "ratio", "to reach", "reached"}) {}

  bool ReportContext(const Context& /*context*/) override { return true; }

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.error_occurred) std::cerr << run.benchmark_name() << ": " << run.error_message << '\n';
      const bool isMedian = run.run_type == Run::RT_Aggregate ? run.aggregate_name == "median" : run.repetitions == 1;
      if (isMedian && !run.error_occurred) Print(run);
    }
  }

 private:
  void Print(const Run& run) {
    const auto row = std::find_if(m_rows.begin(), m_rows.end(),
                                  [&run](const Row& each) { return NameOf(each) == run.run_name.function_name; });
    const double cost = run.counters.at("cost");
    const double floor = run.counters.at("floor");
    const double timesFloor = run.counters.at("ratio");
    const double ratio = row->target.of == Of::SpeedUp ? 1 / timesFloor : timesFloor;
    const bool hasFloor = !row->floor.empty();
    m_table.Row({row->name, CostText(cost, row->unit), hasFloor ? row->floor + " " + CostText(floor, row->unit) : "-",
                 hasFloor ? NumberText(ratio) : "-", TargetText(*row), ReachedText(row->target, cost, ratio)});
  }

  const std::vector<Row>& m_rows;
  Table m_table;
};

}  // namespace

void Suite::Add(const Row& row, const std::function<Contest()>& prepare) {
  m_rows.push_back(row);
  auto* const measure = benchmark::RegisterBenchmark(NameOf(row).c_str(), [prepare](benchmark::State& state) {
    try {
      Compare(state, prepare());
    } catch (const std::exception& error) {
      state.SkipWithError(error.what());
    }
  });
  measure->UseManualTime();
  if (row.unit == Unit::Bytes) measure->Iterations(1);
}

void Suite::Run() {
  TableReporter reporter(m_rows);
  benchmark::RunSpecifiedBenchmarks(&reporter);
}

}  // namespace bench
