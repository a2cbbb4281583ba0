// ReadingsStore's whole-file save and load on a temporary folder. Both run on the store's own executor,
// so they are timed by the CPU time of the whole process (the caller only waits), which other programs
// running on the machine disturb far less than the wall clock.

#include <benchmark/benchmark.h>

#include "benchmark_support.hpp"
#include "cardiolith/storage/readings_store.hpp"
#include "document_files.hpp"
#include "library_readings.hpp"
#include "temporary_folder.hpp"

namespace cardiolith::bench {
namespace {

void StoreSave(benchmark::State& state) {
  const std::size_t size = documentSize(state);
  const Readings& readings = libraryReadings(size);
  const TemporaryFolder folder;
  ReadingsStore store(locationsIn(folder.path()));
  for (auto _ : state) store.save(readings).get();
  reportThroughput(state, size, std::filesystem::file_size(store.localDataPath()));
}
BENCHMARK(StoreSave)->Apply(atEveryDocumentSize)->MeasureProcessCPUTime();

void StoreLoad(benchmark::State& state) {
  const std::size_t size = documentSize(state);
  ReadingsStore store(locationsIn(documentFolder(size)));
  for (auto _ : state) {
    Readings readings = store.load().get();
    if (readings.readings.size() != size) {
      state.SkipWithError("the store loaded a different number of readings");
      break;
    }
  }
  reportThroughput(state, size, corpus(size).text.size());
}
BENCHMARK(StoreLoad)->Apply(atEveryDocumentSize)->MeasureProcessCPUTime();

}  // namespace
}  // namespace cardiolith::bench
