#include <gtest/gtest.h>

#include <cmath>
#include <latch>
#include <optional>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "cardiolith/analysis/readings_summary.hpp"
#include "sample/placeholder_builds.hpp"

namespace cardiolith {
namespace {

// Every field of a summary, floats to the last digit; "nan" or nothing where one is missing.
std::string describe(const ReadingsSummary& summary) {
  std::ostringstream text;
  text.precision(9);
  for (const auto& average : {summary.currentPeriodAverage(), summary.previousPreviousAverage()}) {
    if (average) text << average->systolic() << "/" << average->diastolic() << "/" << average->pulse();
    text << " ";
  }
  text << summary.systolicChange().value_or(NAN) << " " << summary.diastolicChange().value_or(NAN) << " "
       << summary.pulseChange().value_or(NAN) << " "
       << (summary.currentPeriodAverageAnalysis() ? static_cast<int>(*summary.currentPeriodAverageAnalysis())
                                                  : -1)
       << " " << summary.currentPeriodStartDate().timeIntervalSinceReferenceDate() << " "
       << summary.currentPeriodEndDate().timeIntervalSinceReferenceDate();
  return text.str();
}

// This is the program's only use of the placeholder, so the threads race for its first access (unless the
// test is repeated in one process, when the single build has already happened).
TEST(PlaceHolderConcurrencyTest, ManyThreadsAtOnceBuildOneSummary) {
  constexpr std::size_t kThreads = 16;
  std::latch start(kThreads);
  std::vector<std::optional<ReadingsSummary>> first(kThreads), second(kThreads);
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < kThreads; ++i) {
    threads.emplace_back([&, i] {
      start.arrive_and_wait();
      first[i] = ReadingsSummary::placeHolder();
      second[i] = ReadingsSummary::placeHolder();
    });
  }
  for (auto& thread : threads) thread.join();

  EXPECT_EQ(detail::placeHolderBuildCount(), 1);
  // Seven days of plausible readings against the seven before them: every field is present.
  const ReadingsSummary& reference = *first[0];
  ASSERT_TRUE(reference.currentPeriodAverage() && reference.previousPreviousAverage() &&
              reference.systolicChange() && reference.diastolicChange() && reference.pulseChange() &&
              reference.currentPeriodAverageAnalysis());
  for (std::size_t i = 0; i < kThreads; ++i) {
    EXPECT_EQ(describe(*first[i]), describe(reference)) << "thread " << i;
    EXPECT_EQ(describe(*second[i]), describe(reference)) << "thread " << i;
  }
  EXPECT_GE(reference.currentPeriodAverage()->systolic(), 70.0f);
  EXPECT_LT(reference.currentPeriodAverage()->systolic(), 200.0f);
  const double days = (reference.currentPeriodEndDate().timeIntervalSinceReferenceDate() -
                       reference.currentPeriodStartDate().timeIntervalSinceReferenceDate()) /
                      86400.0;
  EXPECT_TRUE(days > 6.9 && days < 7.1) << days;
}

}  // namespace
}  // namespace cardiolith
