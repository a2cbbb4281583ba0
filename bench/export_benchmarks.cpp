// The text export of every reading of a log, with tags resolved through a loaded TagsManager.

#include <benchmark/benchmark.h>

#include "benchmark_support.hpp"
#include "cardiolith/platform/date_formatter.hpp"
#include "cardiolith/platform/list_formatter.hpp"
#include "cardiolith/storage/tags_manager.hpp"
#include "library_readings.hpp"
#include "temporary_folder.hpp"

namespace cardiolith::bench {
namespace {

void InLineFormat(benchmark::State& state) {
  const std::size_t size = documentSize(state);
  const ReadingList& readings = libraryReadings(size).readings;
  const TemporaryFolder folder;
  const TagsManager tags(locationsIn(folder.path()));  // the ten default tags, the ids the log refers to
  tags.waitUntilLoaded();
  const DateFormatter dateFormatter("yyyy-MM-dd HH:mm", "en_US", "UTC");
  const ListFormatter listFormatter("en_US");
  std::size_t bytes = 0;
  for (auto _ : state) {
    for (const auto& reading : readings) {
      const std::string line = reading->inLineFormat(dateFormatter, listFormatter, tags, ",", true, true);
      bytes += line.size();
    }
  }
  reportThroughput(state, size, bytes / static_cast<std::size_t>(state.iterations()));
}
BENCHMARK(InLineFormat)->Apply(atEveryDocumentSize);

}  // namespace
}  // namespace cardiolith::bench
