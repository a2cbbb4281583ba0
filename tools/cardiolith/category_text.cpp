#include "category_text.hpp"

namespace cardiolith::tool {
namespace {

struct CategoryText {
  std::string_view name;
  std::string_view key;
  std::string_view rule;
};

const CategoryText& textOf(BloodPressureAnalysis category) {
  static constexpr CategoryText unreadable{"Unreadable", "unreadable", "the pair fits no category"};
  static constexpr CategoryText low{"Low", "low", "systolic below 90 and diastolic below 60"};
  static constexpr CategoryText normal{"Normal", "normal", "systolic 90-120 and diastolic 60-80"};
  static constexpr CategoryText elevated{"Elevated", "elevated", "systolic 120-129 and diastolic 80 or less"};
  static constexpr CategoryText high{"High", "high", "systolic 130-139, or diastolic 81-89"};
  static constexpr CategoryText veryHigh{"Very high", "veryHigh",
                                         "systolic 140 or more, or diastolic 90 or more"};
  switch (category) {
    case BloodPressureAnalysis::low:
      return low;
    case BloodPressureAnalysis::normal:
      return normal;
    case BloodPressureAnalysis::elevated:
      return elevated;
    case BloodPressureAnalysis::high:
      return high;
    case BloodPressureAnalysis::veryHigh:
      return veryHigh;
    case BloodPressureAnalysis::unreadable:
      break;
  }
  return unreadable;
}

}  // namespace

std::string_view categoryName(BloodPressureAnalysis category) { return textOf(category).name; }
std::string_view categoryKey(BloodPressureAnalysis category) { return textOf(category).key; }
std::string_view categoryRule(BloodPressureAnalysis category) { return textOf(category).rule; }

}  // namespace cardiolith::tool
