// The benchmark program. Before measuring, it checks on the smallest document that every reader and writer
// being compared does the same job: each reader gives back the generated readings, and each writer's text
// is compared with the generated document. The outcomes go into the report's context.

#include <benchmark/benchmark.h>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

#include <climits>
#include <cstdlib>
#include <exception>
#include <functional>
#include <string>
#include <string_view>

#include "bare_writer.hpp"
#include "cardiolith/model/json.hpp"
#include "cardiolith/platform/logger.hpp"
#include "corpus.hpp"
#include "library_readings.hpp"
#include "nlohmann_codec.hpp"
#include "simdjson_reader.hpp"

namespace cardiolith::bench {
namespace {

constexpr std::size_t kCheckedSize = kDocumentSizes.front();

std::string outcome(const std::function<std::string()>& check) {
  try {
    return check();
  } catch (const std::exception& error) {
    return std::string("failed: ") + error.what();
  }
}

std::string compareReadings(const std::vector<PlainReading>& read) {
  const auto& expected = corpus(kCheckedSize).readings;
  if (read.size() != expected.size()) return "different count: " + std::to_string(read.size());
  for (std::size_t i = 0; i < read.size(); ++i) {
    if (read[i] != expected[i]) return "different reading at index " + std::to_string(i);
  }
  return "same readings";
}

std::string compareText(const std::string& written) {
  const std::string& expected = corpus(kCheckedSize).text;
  if (written == expected) return "same bytes";
  std::size_t at = 0;
  while (at < written.size() && at < expected.size() && written[at] == expected[at]) ++at;
  const std::size_t from = at < 40 ? 0 : at - 40;
  return "differs at byte " + std::to_string(at) + ": ..." + written.substr(from, 80) + "... instead of ..." +
         expected.substr(from, 80) + "...";
}

void checkEquivalence() {
  const Corpus& document = corpus(kCheckedSize);
  benchmark::AddCustomContext(
      "readers.simdjson", outcome([&] { return compareReadings(readDocumentWithSimdjson(document.text)); }));
  benchmark::AddCustomContext(
      "readers.nlohmann", outcome([&] { return compareReadings(readDocumentWithNlohmann(document.text)); }));
  benchmark::AddCustomContext("readers.library", outcome([&] {
                                std::vector<PlainReading> read;
                                for (const auto& reading : json::decode<Readings>(document.text).readings) {
                                  read.push_back(toPlainReading(*reading));
                                }
                                return compareReadings(read);
                              }));
  benchmark::AddCustomContext(
      "writers.nlohmann", outcome([&] { return compareText(writeDocumentWithNlohmann(document.readings)); }));
  benchmark::AddCustomContext(
      "writers.library", outcome([&] { return compareText(json::encode(libraryReadings(kCheckedSize))); }));
}

// With CARDIOLITH_BENCH_WARM_HEAP=1 the heap keeps what is freed (glibc: one heap for every thread, the
// stores' included, no separate mappings for large blocks, no returning memory to the system), so that every
// repetition after a benchmark's first works in memory the process has touched before, as the small
// documents' repetitions do anyway. Touching a fresh page costs microseconds on a virtual machine; without
// it, what grows from 10,000 to 1,000,000 readings is the code's own cost. True when the heap is kept.
bool keepHeapWarm() {
  const char* setting = std::getenv("CARDIOLITH_BENCH_WARM_HEAP");
  if (setting == nullptr || std::string_view(setting) != "1") return false;
#if defined(__GLIBC__)
  return mallopt(M_ARENA_MAX, 1) == 1 && mallopt(M_MMAP_MAX, 0) == 1 &&
         mallopt(M_TRIM_THRESHOLD, INT_MAX) == 1;
#else
  return false;
#endif
}

}  // namespace
}  // namespace cardiolith::bench

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  // The stores log their expected first-start failures (no tags file yet); they are not results.
  cardiolith::Logger::setHandler([](const cardiolith::LogRecord&) {});
  benchmark::AddCustomContext("heap",
                              cardiolith::bench::keepHeapWarm() ? "kept warm" : "as the system gives it");
  cardiolith::bench::checkEquivalence();
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
