// The library's readings document codec on the generated documents.

#include <benchmark/benchmark.h>

#include "benchmark_support.hpp"
#include "cardiolith/model/json.hpp"
#include "library_readings.hpp"

namespace cardiolith::bench {
namespace {

void LibraryDecode(benchmark::State& state) {
  const std::size_t size = documentSize(state);
  const Corpus& document = corpus(size);
  const AllocationTally allocations;
  for (auto _ : state) {
    Readings readings = json::decode<Readings>(document.text);
    benchmark::DoNotOptimize(readings.readings.data());
  }
  allocations.reportPerItem(state, "allocs_per_reading", size);
  reportThroughput(state, size, document.text.size());
}
BENCHMARK(LibraryDecode)->Apply(atEveryDocumentSize);

void LibraryEncode(benchmark::State& state) {
  const std::size_t size = documentSize(state);
  const Readings& readings = libraryReadings(size);
  const std::size_t bytes = corpus(size).text.size();
  const AllocationTally allocations;
  for (auto _ : state) {
    std::string text = json::encode(readings);
    benchmark::DoNotOptimize(text.data());
  }
  allocations.reportPerItem(state, "allocs_per_reading", size);
  reportThroughput(state, size, bytes);
}
BENCHMARK(LibraryEncode)->Apply(atEveryDocumentSize);

}  // namespace
}  // namespace cardiolith::bench
