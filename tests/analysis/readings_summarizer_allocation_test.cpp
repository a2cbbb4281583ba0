// Counts the allocations of a summary with a replacement of the global operator new for this test
// program. Counting is off except inside an AllocationCounter's scope, and counts only the thread that
// opened it.
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

void* allocate(std::size_t size) {
  if (counting) {
    ++counted.allocations;
    counted.bytes += size;
  }
  if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}

class AllocationCounter {
 public:
  AllocationCounter() {
    counted = {};
    counting = true;
  }
  ~AllocationCounter() { counting = false; }
  AllocationCounter(const AllocationCounter&) = delete;
  AllocationCounter& operator=(const AllocationCounter&) = delete;

  AllocationCount count() const { return counted; }
};

}  // namespace

void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

namespace cardiolith {
namespace {

using testing::reading;
using testing::utc;

TEST(ReadingsSummarizerAllocationTest, AllocatesNothingPerReadingBeyondTheTwoPeriodLists) {
  testing::ScopedTimeZone zone("UTC");
  constexpr std::size_t kReadings = 100'000;
  constexpr double kDay = 86400;
  const Date start = utc(2025, 3, 1);
  const Date end = start.addingTimeInterval(7 * kDay);
  ReadingList readings;
  readings.reserve(kReadings);
  // Spread over 30 days from the previous start on: nearly half lie in one of the two periods.
  for (std::size_t i = 0; i < kReadings; ++i) {
    const double offset = -7 * kDay + 30 * kDay * static_cast<double>(i) / kReadings;
    readings.push_back(reading(start.addingTimeInterval(offset), 120, 80, 70));
  }

  AllocationCount lists;
  {
    AllocationCounter counter;
    const ReadingList current = filtered(readings, start, end);
    const ReadingList previous = filtered(readings, start.addingTimeInterval(-7 * kDay), start);
    lists = counter.count();
    ASSERT_GT(current.size() + previous.size(), kReadings / 3);
  }
  AllocationCount summarising;
  {
    AllocationCounter counter;
    const ReadingsSummary summary = ReadingsSummarizer::summarise(readings, start, end);
    summarising = counter.count();
    ASSERT_TRUE(summary.currentPeriodAverage() && summary.previousPreviousAverage());
  }

  // Beyond the two period lists, only the calendar's few fixed allocations; a copy of a period's values,
  // let alone an allocation per reading, would show here.
  EXPECT_LE(summarising.allocations, lists.allocations + 16);
  EXPECT_LE(summarising.bytes, lists.bytes + 4096);
}

}  // namespace
}  // namespace cardiolith
