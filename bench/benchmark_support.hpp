#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>

#include "allocation_counter.hpp"
#include "cardiolith/platform/storage_locations.hpp"
#include "corpus.hpp"

namespace cardiolith::bench {

// Runs a benchmark once per document size, the size (in readings) as its argument.
inline void atEveryDocumentSize(benchmark::internal::Benchmark* benchmark) {
  for (std::size_t size : kDocumentSizes) benchmark->Arg(static_cast<std::int64_t>(size));
  benchmark->Unit(benchmark::kMicrosecond);
}

inline std::size_t documentSize(const benchmark::State& state) {
  return static_cast<std::size_t>(state.range(0));
}

// The shared container is the folder itself; the documents folder inside it does not exist, so stores
// find nothing to migrate.
inline StorageLocations locationsIn(const std::filesystem::path& folder) {
  return StorageLocations{folder, {folder / "documents"}};
}

// Counts the allocations of the calling thread from construction, and reports them per reading (or per
// item) when the benchmark loop is over.
class AllocationTally {
 public:
  AllocationTally() : start_(allocationsOnThisThread()) {}
  std::uint64_t sinceStart() const { return allocationsOnThisThread() - start_; }
  void reportPerItem(benchmark::State& state, const char* counter, std::size_t itemsPerIteration) const {
    const double items = static_cast<double>(state.iterations()) * static_cast<double>(itemsPerIteration);
    state.counters[counter] = static_cast<double>(sinceStart()) / items;
  }

 private:
  std::uint64_t start_;
};

// Items (readings) and bytes handled per second.
inline void reportThroughput(benchmark::State& state, std::size_t readingsPerIteration,
                             std::size_t bytesPerIteration = 0) {
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) *
                          static_cast<std::int64_t>(readingsPerIteration));
  if (bytesPerIteration > 0) {
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(bytesPerIteration));
  }
}

}  // namespace cardiolith::bench
