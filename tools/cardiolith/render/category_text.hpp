#pragma once

#include <cardiolith/analysis/blood_pressure_analysis.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace cardiolith::tool {

// The category in words for people ("Very high").
std::string_view categoryName(BloodPressureAnalysis category);
// The advice for a reading in the hypertensive-crisis range (isHypertensiveCrisis), one line.
inline constexpr std::string_view kCrisisAdvice =
    "This is in the hypertensive-crisis range (180 or more systolic, or 120 or more diastolic): measure "
    "again after a few minutes; if it stays this high, seek medical help.";
// The category's stable identifier for scripts ("veryHigh").
std::string_view categoryKey(BloodPressureAnalysis category);
// The pressures that make the category, in words, from the library's decision table ("systolic 140 or
// more, or diastolic 90 or more").
std::string categoryRule(BloodPressureAnalysis category);

// Why a pair fits no row of the table: the first row that takes one of its pressures and not the other
// ("systolic 85 is in the Low row (systolic 89 or less), but diastolic 70 is not (diastolic 59 or less)").
std::string missedRule(std::int64_t systolic, std::int64_t diastolic);

// The category of a pair in words with the table's rule that decides it, as people are shown it: "High
// (systolic 130-139, or diastolic 81-89)"; a pair that fits no row reads "No category (outside the table)"
// with the row it missed (missedRule). JSON keeps categoryKey instead.
std::string categoryWithRule(std::int64_t systolic, std::int64_t diastolic);

// One pressure's stretch of a category on a chart, in mmHg. Bounds lie halfway between whole values, so a
// reading never sits on a boundary; the outermost bands are open (infinite).
struct CategoryBand {
  BloodPressureAnalysis category;
  double lower;
  double upper;
};

enum class Pressure { systolic, diastolic };

// The bands of one pressure from low to high, derived from the decision table: each row that bounds that
// pressure and reaches higher than the rows before it.
std::vector<CategoryBand> categoryBands(Pressure pressure);

}  // namespace cardiolith::tool
