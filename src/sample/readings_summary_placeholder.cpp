#include <atomic>
#include <optional>

#include "cardiolith/analysis/readings_summary.hpp"
#include "cardiolith/platform/date.hpp"
#include "cardiolith/sample/fake_readings_generator.hpp"
#include "sample/placeholder_builds.hpp"

namespace cardiolith {
namespace {

std::atomic<int> builds{0};

// Two weeks of daily sample readings up to now, summarised over the last seven calendar days. The clock
// is read three times, as the readings, the start and the end are made.
ReadingsSummary buildPlaceHolder() {
  builds.fetch_add(1, std::memory_order_relaxed);
  const ReadingList readings =
      FakeReadingsGenerator::generateFakeReadings(14, Date::now(), std::nullopt, false);
  const Date start = Date::now().addingDays(-7);
  const Date end = Date::now();
  return ReadingsSummarizer::summarise(readings, start, end);
}

}  // namespace

int detail::placeHolderBuildCount() noexcept { return builds.load(std::memory_order_relaxed); }

ReadingsSummary ReadingsSummary::placeHolder() {
  // Built once per process; threads arriving during the build wait for it.
  static const ReadingsSummary placeHolder = buildPlaceHolder();
  return placeHolder;
}

}  // namespace cardiolith
