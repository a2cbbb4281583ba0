#pragma once

#include <cardiolith/analysis/blood_pressure_analysis.hpp>
#include <string_view>

namespace cardiolith::tool {

// The category in words for people ("Very high").
std::string_view categoryName(BloodPressureAnalysis category);
// The category's stable identifier for scripts ("veryHigh").
std::string_view categoryKey(BloodPressureAnalysis category);
// The pressures that make the category, in words ("systolic 140 or more, or diastolic 90 or more").
std::string_view categoryRule(BloodPressureAnalysis category);

}  // namespace cardiolith::tool
