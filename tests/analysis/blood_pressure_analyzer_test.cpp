#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <ostream>

#include "cardiolith/analysis/blood_pressure_analysis.hpp"

namespace cardiolith {
namespace {

using enum BloodPressureAnalysis;

constexpr std::int64_t int64Max = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t int64Min = std::numeric_limits<std::int64_t>::min();

const char* caseName(BloodPressureAnalysis analysis) {
  switch (analysis) {
    case unreadable:
      return "unreadable";
    case low:
      return "low";
    case normal:
      return "normal";
    case elevated:
      return "elevated";
    case high:
      return "high";
    case veryHigh:
      return "veryHigh";
  }
  return "?";
}

struct Pair {
  std::int64_t systolic;
  std::int64_t diastolic;
  BloodPressureAnalysis expected;
  int row;  // the first row of the decision table that holds
};

std::ostream& operator<<(std::ostream& out, const Pair& pair) {
  return out << pair.systolic << "/" << pair.diastolic << " -> " << caseName(pair.expected) << " (row "
             << pair.row << ")";
}

// Pairs on either side of each band edge, the overlaps that the row order settles, the gaps that fall
// through, negative values on one or both sides and the ends of the 64-bit range.
constexpr Pair tellingPairs[] = {
    {0, 0, low, 1},
    {89, 59, low, 1},
    {89, 60, unreadable, 8},
    {90, 59, unreadable, 8},
    {90, 60, normal, 2},
    {120, 80, normal, 2},
    {120, 81, high, 5},
    {120, 59, elevated, 3},
    {121, 80, elevated, 3},
    {129, 0, elevated, 3},
    {129, 81, high, 5},
    {125, -1, unreadable, 8},
    {130, 50, high, 4},
    {139, 120, high, 4},
    {135, 95, high, 4},
    {150, 85, high, 5},
    {140, 80, veryHigh, 6},
    {140, 0, veryHigh, 6},
    {100, 90, veryHigh, 7},
    {85, 70, unreadable, 8},
    {100, 50, unreadable, 8},
    {-1, -1, unreadable, 8},
    {-1, 60, unreadable, 8},
    {135, -5, high, 4},
    {-5, 85, high, 5},
    {-5, 95, veryHigh, 7},
    {150, -5, veryHigh, 6},
    {int64Max, 0, veryHigh, 6},
    {0, int64Max, veryHigh, 7},
    {int64Min, int64Min, unreadable, 8},
    // A wrapped difference must not bring a value far below a band back into it.
    {int64Min + 100, 70, unreadable, 8},
    {int64Min, int64Max, veryHigh, 7},
    {int64Max, int64Min, veryHigh, 6},
};

class BloodPressureAnalyzerTellingPairTest : public testing::TestWithParam<Pair> {};

TEST_P(BloodPressureAnalyzerTellingPairTest, GivesTheFirstMatchingRow) {
  const Pair& pair = GetParam();
  EXPECT_EQ(caseName(BloodPressureAnalyzer::result(pair.systolic, pair.diastolic)), caseName(pair.expected));
}

INSTANTIATE_TEST_SUITE_P(DecisionTable, BloodPressureAnalyzerTellingPairTest,
                         testing::ValuesIn(tellingPairs));

// The classifier is usable in constant expressions and promises not to throw.
static_assert(noexcept(BloodPressureAnalyzer::result(0, 0)));
static_assert(BloodPressureAnalyzer::result(120, 80) == normal);
static_assert(BloodPressureAnalyzer::result(120, 59) == elevated);
static_assert(BloodPressureAnalyzer::result(135, 95) == high);
static_assert(BloodPressureAnalyzer::result(150, 85) == high);
static_assert(BloodPressureAnalyzer::result(int64Max, 0) == veryHigh);
static_assert(BloodPressureAnalyzer::result(int64Min, int64Min) == unreadable);

}  // namespace
}  // namespace cardiolith
