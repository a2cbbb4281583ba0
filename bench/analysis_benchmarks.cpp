// The period summary, the date filter under it, and the classification, with the allocations they make.

#include <benchmark/benchmark.h>

#include "benchmark_support.hpp"
#include "cardiolith/analysis/blood_pressure_analysis.hpp"
#include "cardiolith/analysis/readings_summary.hpp"
#include "cardiolith/model/collection.hpp"
#include "cardiolith/platform/calendar.hpp"
#include "document_generator.hpp"
#include "library_readings.hpp"

namespace cardiolith::bench {
namespace {

struct Period {
  Date start;
  Date end;
};

// The last seven whole days of the log, through the end of its newest day.
Period lastWeek() {
  const Date end(kNewestDay + kSecondsPerDay);
  return Period{Date(end.timeIntervalSinceReferenceDate() - 7 * kSecondsPerDay), end};
}

// From the oldest reading to the newest.
Period wholeLog(const ReadingList& readings) {
  Period period{readings.front()->date(), readings.front()->date()};
  for (const auto& reading : readings) {
    period.start = std::min(period.start, reading->date());
    period.end = std::max(period.end, reading->date());
  }
  return period;
}

void summarise(benchmark::State& state, Period period) {
  const std::size_t size = documentSize(state);
  const ReadingList& readings = libraryReadings(size).readings;
  const AllocationTally allocations;
  for (auto _ : state) {
    benchmark::DoNotOptimize(ReadingsSummarizer::summarise(readings, period.start, period.end));
  }
  const double perCall =
      static_cast<double>(allocations.sinceStart()) / static_cast<double>(state.iterations());
  state.counters["allocs_per_call"] = perCall;
  reportThroughput(state, size);
}

void SummariseWeek(benchmark::State& state) { summarise(state, lastWeek()); }
BENCHMARK(SummariseWeek)->Apply(atEveryDocumentSize);

void SummariseAll(benchmark::State& state) {
  summarise(state, wholeLog(libraryReadings(documentSize(state)).readings));
}
BENCHMARK(SummariseAll)->Apply(atEveryDocumentSize);

// The filter keeping every reading: the whole list copied, one shared reference at a time.
void FilteredAll(benchmark::State& state) {
  const std::size_t size = documentSize(state);
  const ReadingList& readings = libraryReadings(size).readings;
  const Period period = wholeLog(readings);
  const AllocationTally allocations;
  for (auto _ : state) benchmark::DoNotOptimize(filtered(readings, period.start, period.end));
  state.counters["allocs_per_call"] =
      static_cast<double>(allocations.sinceStart()) / static_cast<double>(state.iterations());
  reportThroughput(state, size);
}
BENCHMARK(FilteredAll)->Apply(atEveryDocumentSize);

// The floor for anything that looks at every reading: one read-only pass over the date and the three values
// of each, through its shared reference, as the summary's averaging does.
void WalkReadings(benchmark::State& state) {
  const std::size_t size = documentSize(state);
  const ReadingList& readings = libraryReadings(size).readings;
  const Period period = wholeLog(readings);
  for (auto _ : state) {
    std::int64_t sum = 0;
    std::size_t kept = 0;
    for (const auto& reading : readings) {
      if (reading->date() < period.start || period.end < reading->date()) continue;
      sum += reading->systolic() + reading->diastolic() + reading->pulse();
      ++kept;
    }
    benchmark::DoNotOptimize(sum);
    benchmark::DoNotOptimize(kept);
  }
  reportThroughput(state, size);
}
BENCHMARK(WalkReadings)->Apply(atEveryDocumentSize);

// Every pair of a thousand readings classified, one call per pair.
void ClassifyPairs(benchmark::State& state) {
  const ReadingList& readings = libraryReadings(1'000).readings;
  std::vector<std::pair<std::int64_t, std::int64_t>> pairs;
  for (const auto& reading : readings) pairs.emplace_back(reading->systolic(), reading->diastolic());
  const AllocationTally allocations;
  for (auto _ : state) {
    for (const auto& [systolic, diastolic] : pairs) {
      benchmark::DoNotOptimize(BloodPressureAnalyzer::result(systolic, diastolic));
    }
  }
  allocations.reportPerItem(state, "allocs_per_call", pairs.size());
  reportThroughput(state, pairs.size());
}
BENCHMARK(ClassifyPairs);

}  // namespace
}  // namespace cardiolith::bench
