#include <gtest/gtest.h>

#include <latch>
#include <optional>
#include <thread>
#include <vector>

#include "cardiolith/analysis/readings_summary.hpp"
#include "sample/placeholder_builds.hpp"

namespace cardiolith {
namespace {

void expectSameFloat(const std::optional<float>& a, const std::optional<float>& b) {
  ASSERT_EQ(a.has_value(), b.has_value());
  if (a) {
    EXPECT_EQ(*a, *b);
  }
}

void expectSameSummary(const ReadingsSummary& a, const ReadingsSummary& b) {
  ASSERT_TRUE(a.currentPeriodAverage() && b.currentPeriodAverage());
  ASSERT_TRUE(a.previousPreviousAverage() && b.previousPreviousAverage());
  EXPECT_EQ(a.currentPeriodAverage()->systolic(), b.currentPeriodAverage()->systolic());
  EXPECT_EQ(a.currentPeriodAverage()->diastolic(), b.currentPeriodAverage()->diastolic());
  EXPECT_EQ(a.currentPeriodAverage()->pulse(), b.currentPeriodAverage()->pulse());
  EXPECT_EQ(a.previousPreviousAverage()->systolic(), b.previousPreviousAverage()->systolic());
  EXPECT_EQ(a.previousPreviousAverage()->diastolic(), b.previousPreviousAverage()->diastolic());
  EXPECT_EQ(a.previousPreviousAverage()->pulse(), b.previousPreviousAverage()->pulse());
  expectSameFloat(a.systolicChange(), b.systolicChange());
  expectSameFloat(a.diastolicChange(), b.diastolicChange());
  expectSameFloat(a.pulseChange(), b.pulseChange());
  EXPECT_EQ(a.currentPeriodAverageAnalysis(), b.currentPeriodAverageAnalysis());
  EXPECT_EQ(a.currentPeriodStartDate(), b.currentPeriodStartDate());
  EXPECT_EQ(a.currentPeriodEndDate(), b.currentPeriodEndDate());
}

// This is the program's only use of the placeholder, so the threads race for its first access (unless the
// test is repeated in one process, when the single build has already happened).
TEST(PlaceHolderConcurrencyTest, ManyThreadsAtOnceBuildOneSummary) {
  constexpr int kThreads = 16;
  std::latch start(kThreads);
  std::vector<std::optional<ReadingsSummary>> first(kThreads), second(kThreads);
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&, i] {
      start.arrive_and_wait();
      first[i] = ReadingsSummary::placeHolder();
      second[i] = ReadingsSummary::placeHolder();
    });
  }
  for (auto& thread : threads) thread.join();

  EXPECT_EQ(detail::placeHolderBuildCount(), 1);
  const ReadingsSummary& reference = *first[0];
  for (int i = 0; i < kThreads; ++i) {
    expectSameSummary(*first[i], reference);
    expectSameSummary(*second[i], reference);
  }
  // Seven days of plausible readings against the seven before them.
  EXPECT_TRUE(reference.currentPeriodAverageAnalysis().has_value());
  EXPECT_TRUE(reference.systolicChange() && reference.diastolicChange() && reference.pulseChange());
  EXPECT_GE(reference.currentPeriodAverage()->systolic(), 70.0f);
  EXPECT_LT(reference.currentPeriodAverage()->systolic(), 200.0f);
  const double days = (reference.currentPeriodEndDate().timeIntervalSinceReferenceDate() -
                       reference.currentPeriodStartDate().timeIntervalSinceReferenceDate()) /
                      86400.0;
  EXPECT_GT(days, 6.9);
  EXPECT_LT(days, 7.1);
}

}  // namespace
}  // namespace cardiolith
