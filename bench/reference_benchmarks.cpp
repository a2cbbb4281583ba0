// Reference points on the same documents as the library benchmarks: the floors (reading and writing the
// file's bytes, timed like the store, a strict simdjson reader, a bare std::to_chars writer) and
// nlohmann/json, the common general-purpose choice.

#include <benchmark/benchmark.h>

#include "bare_writer.hpp"
#include "benchmark_support.hpp"
#include "document_files.hpp"
#include "nlohmann_codec.hpp"
#include "simdjson_reader.hpp"
#include "temporary_folder.hpp"

namespace cardiolith::bench {
namespace {

void ReadFileBytes(benchmark::State& state) {
  const std::size_t size = documentSize(state);
  const auto path = documentFolder(size) / "readings";
  const std::size_t bytes = corpus(size).text.size();
  for (auto _ : state) {
    std::string text = readFileBytes(path);
    benchmark::DoNotOptimize(text.data());
  }
  reportThroughput(state, size, bytes);
}
BENCHMARK(ReadFileBytes)->Apply(atEveryDocumentSize)->MeasureProcessCPUTime();

void WriteFileBytes(benchmark::State& state) {
  const std::size_t size = documentSize(state);
  const std::string& text = corpus(size).text;
  const TemporaryFolder folder;
  const auto path = folder.path() / "readings";
  for (auto _ : state) writeFileBytes(path, text);
  reportThroughput(state, size, text.size());
}
BENCHMARK(WriteFileBytes)->Apply(atEveryDocumentSize)->MeasureProcessCPUTime();

void SimdjsonDecode(benchmark::State& state) {
  const std::size_t size = documentSize(state);
  const Corpus& document = corpus(size);
  const AllocationTally allocations;
  for (auto _ : state) {
    auto readings = readDocumentWithSimdjson(document.text);
    benchmark::DoNotOptimize(readings.data());
  }
  allocations.reportPerItem(state, "allocs_per_reading", size);
  reportThroughput(state, size, document.text.size());
}
BENCHMARK(SimdjsonDecode)->Apply(atEveryDocumentSize);

void BareEncode(benchmark::State& state) {
  const std::size_t size = documentSize(state);
  const Corpus& document = corpus(size);
  const AllocationTally allocations;
  for (auto _ : state) {
    std::string text = writeDocument(document.readings);
    benchmark::DoNotOptimize(text.data());
  }
  allocations.reportPerItem(state, "allocs_per_reading", size);
  reportThroughput(state, size, document.text.size());
}
BENCHMARK(BareEncode)->Apply(atEveryDocumentSize);

void NlohmannDecode(benchmark::State& state) {
  const std::size_t size = documentSize(state);
  const Corpus& document = corpus(size);
  const AllocationTally allocations;
  for (auto _ : state) {
    auto readings = readDocumentWithNlohmann(document.text);
    benchmark::DoNotOptimize(readings.data());
  }
  allocations.reportPerItem(state, "allocs_per_reading", size);
  reportThroughput(state, size, document.text.size());
}
BENCHMARK(NlohmannDecode)->Apply(atEveryDocumentSize);

void NlohmannEncode(benchmark::State& state) {
  const std::size_t size = documentSize(state);
  const Corpus& document = corpus(size);
  const AllocationTally allocations;
  for (auto _ : state) {
    std::string text = writeDocumentWithNlohmann(document.readings);
    benchmark::DoNotOptimize(text.data());
  }
  allocations.reportPerItem(state, "allocs_per_reading", size);
  reportThroughput(state, size, document.text.size());
}
BENCHMARK(NlohmannEncode)->Apply(atEveryDocumentSize);

}  // namespace
}  // namespace cardiolith::bench
