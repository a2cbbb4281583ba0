// Counts the allocations of a summary with a replacement of the global operator new for this test
// program. Counting is off except inside countAllocations, and counts only the thread that calls it.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <new>

#include "analysis/readings_fixtures.hpp"
#include "cardiolith/analysis/readings_summary.hpp"
#include "cardiolith/model/collection.hpp"
#include "support/scoped_time_zone.hpp"

namespace {

struct AllocationCount {
  std::size_t allocations = 0;
  std::size_t bytes = 0;
};

thread_local bool counting = false;
thread_local AllocationCount counted;

template <class Work>
AllocationCount countAllocations(Work work) {
  counted = {};
  counting = true;
  work();
  counting = false;
  return counted;
}

}  // namespace

// operator new[] and the sized operator delete forward to these by default.
void* operator new(std::size_t size) {
  if (counting) counted = {counted.allocations + 1, counted.bytes + size};
  if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
// The standard library's temporary buffers (std::stable_sort) take memory through the nothrow form; it must
// come from the same malloc that the replaced delete frees into.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  try {
    return operator new(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
void operator delete(void* memory, const std::nothrow_t&) noexcept { std::free(memory); }

namespace cardiolith {
namespace {

using testing::reading;
using testing::utc;

TEST(ReadingsSummarizerAllocationTest, AllocatesNothingPerReading) {
  testing::ScopedTimeZone zone("UTC");
  constexpr std::size_t kReadings = 100'000;
  constexpr double kDay = 86400;
  const Date start = utc(2025, 3, 1);
  const Date end = start.addingTimeInterval(7 * kDay);
  ReadingList readings;
  // Spread over 30 days from the previous start on: nearly half lie in one of the two periods.
  for (std::size_t i = 0; i < kReadings; ++i) {
    readings.push_back(reading(
        start.addingTimeInterval(-7 * kDay + 30 * kDay * static_cast<double>(i) / kReadings), 120, 80, 70));
  }

  const std::size_t periodReadings = filtered(readings, start, end).size() +
                                     filtered(readings, start.addingTimeInterval(-7 * kDay), start).size();
  ASSERT_GT(periodReadings, kReadings / 3);
  std::optional<ReadingsSummary> summary;
  const AllocationCount summarising =
      countAllocations([&] { summary = ReadingsSummarizer::summarise(readings, start, end); });
  ASSERT_TRUE(summary->currentPeriodAverage() && summary->previousPreviousAverage());

  // Only the calendar's few fixed allocations: a list or a copy of a period's readings, let alone an
  // allocation per reading, would show here.
  EXPECT_LE(summarising.allocations, 16u);
  EXPECT_LE(summarising.bytes, 4096u);
}

}  // namespace
}  // namespace cardiolith
