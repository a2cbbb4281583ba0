#include <algorithm>
#include <cstdint>
#include <limits>

#include "cardiolith/analysis/blood_pressure_analysis.hpp"
#include "cardiolith/analysis/plausibility.hpp"

namespace cardiolith {
namespace {

using enum BloodPressureAnalysis;

constexpr std::int64_t int64Max = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t int64Min = std::numeric_limits<std::int64_t>::min();

struct Pair {
  std::int64_t systolic;
  std::int64_t diastolic;
  BloodPressureAnalysis expected;
  int row;  // the first row of the decision table that holds
};

// Pairs on either side of each band edge, the overlaps that the row order settles, the gaps that fall
// through, negative values on one or both sides and the ends of the 64-bit range, by the row they fall to.
// clang-format off
constexpr Pair tellingPairs[] = {
    {0, 0, low, 1}, {89, 59, low, 1},
    {90, 60, normal, 2}, {120, 80, normal, 2},
    {120, 59, elevated, 3}, {121, 80, elevated, 3}, {129, 0, elevated, 3},
    {130, 50, high, 4}, {139, 120, high, 4}, {135, 95, high, 4}, {135, -5, high, 4},
    {120, 81, high, 5}, {129, 81, high, 5}, {150, 85, high, 5}, {-5, 85, high, 5},
    {140, 80, veryHigh, 6}, {140, 0, veryHigh, 6}, {150, -5, veryHigh, 6}, {int64Max, 0, veryHigh, 6},
    {int64Max, int64Min, veryHigh, 6},
    {100, 90, veryHigh, 7}, {-5, 95, veryHigh, 7}, {0, int64Max, veryHigh, 7}, {int64Min, int64Max, veryHigh, 7},
    {89, 60, unreadable, 8}, {90, 59, unreadable, 8}, {125, -1, unreadable, 8}, {85, 70, unreadable, 8},
    {100, 50, unreadable, 8}, {-1, -1, unreadable, 8}, {-1, 60, unreadable, 8}, {int64Min, int64Min, unreadable, 8},
    // A wrapped difference must not bring a value far below a band back into it.
    {int64Min + 100, 70, unreadable, 8},
};
// clang-format on

// The classifier is usable in constant expressions, promises not to throw, and agrees with the table: a
// wrong row fails the build of this program.
static_assert(noexcept(BloodPressureAnalyzer::result(0, 0)));
static_assert(std::ranges::all_of(tellingPairs, [](const Pair& pair) {
  return BloodPressureAnalyzer::result(pair.systolic, pair.diastolic) == pair.expected;
}));
// The crisis range starts at 180 systolic or 120 diastolic, either alone.
static_assert(!isHypertensiveCrisis(179, 119) && isHypertensiveCrisis(180, 80) &&
              isHypertensiveCrisis(150, 120));

}  // namespace
}  // namespace cardiolith
