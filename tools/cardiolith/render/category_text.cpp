#include "render/category_text.hpp"

#include <algorithm>
#include <limits>

namespace cardiolith::tool {
namespace {

struct CategoryWords {
  std::string_view name;
  std::string_view key;
};

CategoryWords wordsOf(BloodPressureAnalysis category) {
  switch (category) {
    case BloodPressureAnalysis::low:
      return {"Low", "low"};
    case BloodPressureAnalysis::normal:
      return {"Normal", "normal"};
    case BloodPressureAnalysis::elevated:
      return {"Elevated", "elevated"};
    case BloodPressureAnalysis::high:
      return {"High", "high"};
    case BloodPressureAnalysis::veryHigh:
      return {"Very high", "veryHigh"};
    case BloodPressureAnalysis::unreadable:
      break;
  }
  // The library's name says the pair could not be classified; to a person the reading itself is fine.
  return {"No category (outside the table)", "unreadable"};
}

constexpr auto unbounded = std::numeric_limits<std::int64_t>::max();

// "systolic 90-120", "diastolic 80 or less", "systolic 140 or more".
std::string boundsText(std::string_view pressure, const PressureBounds& bounds) {
  const std::string name(pressure);
  if (bounds.highest == unbounded) return name + " " + std::to_string(bounds.lowest) + " or more";
  if (bounds.lowest <= 0) return name + " " + std::to_string(bounds.highest) + " or less";
  return name + " " + std::to_string(bounds.lowest) + "-" + std::to_string(bounds.highest);
}

std::string rowText(const CategoryRow& row) {
  std::string text;
  if (row.systolic.isBounded()) text = boundsText("systolic", row.systolic);
  if (row.diastolic.isBounded())
    text += (text.empty() ? "" : " and ") + boundsText("diastolic", row.diastolic);
  return text;
}

}  // namespace

std::string_view categoryName(BloodPressureAnalysis category) { return wordsOf(category).name; }
std::string_view categoryKey(BloodPressureAnalysis category) { return wordsOf(category).key; }

std::string categoryRule(BloodPressureAnalysis category) {
  std::string rule;
  for (const auto& row : categoryTable) {
    if (row.category == category) rule += (rule.empty() ? "" : ", or ") + rowText(row);
  }
  return rule.empty() ? "no row of the category table holds this pair" : rule;
}

std::string missedRule(std::int64_t systolic, std::int64_t diastolic) {
  for (const auto& row : categoryTable) {
    if (!row.systolic.isBounded() || !row.diastolic.isBounded()) continue;
    const bool systolicFits = row.systolic.contains(systolic),
               diastolicFits = row.diastolic.contains(diastolic);
    if (systolicFits == diastolicFits) continue;
    const std::string name(categoryName(row.category));
    const auto side = [](std::string_view pressure, std::int64_t value) {
      return std::string(pressure) + " " + std::to_string(value);
    };
    if (systolicFits) {
      return side("systolic", systolic) + " is in the " + name + " row (" +
             boundsText("systolic", row.systolic) + "), but " + side("diastolic", diastolic) + " is not (" +
             boundsText("diastolic", row.diastolic) + ")";
    }
    return side("diastolic", diastolic) + " is in the " + name + " row (" +
           boundsText("diastolic", row.diastolic) + "), but " + side("systolic", systolic) + " is not (" +
           boundsText("systolic", row.systolic) + ")";
  }
  return categoryRule(BloodPressureAnalysis::unreadable);
}

std::string categoryWithRule(std::int64_t systolic, std::int64_t diastolic) {
  const auto category = BloodPressureAnalyzer::result(systolic, diastolic);
  return std::string(categoryName(category)) + " (" +
         (category == BloodPressureAnalysis::unreadable ? missedRule(systolic, diastolic)
                                                        : categoryRule(category)) +
         ")";
}

std::vector<CategoryBand> categoryBands(Pressure pressure) {
  std::vector<const PressureBounds*> bounds;
  std::vector<BloodPressureAnalysis> categories;
  for (const auto& row : categoryTable) {
    const auto& ofPressure = pressure == Pressure::systolic ? row.systolic : row.diastolic;
    if (!ofPressure.isBounded()) continue;
    bounds.push_back(&ofPressure);
    categories.push_back(row.category);
  }
  std::vector<std::size_t> order(bounds.size());
  for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
  std::stable_sort(order.begin(), order.end(),
                   [&](std::size_t a, std::size_t b) { return bounds[a]->highest < bounds[b]->highest; });

  constexpr double infinity = std::numeric_limits<double>::infinity();
  std::vector<CategoryBand> bands;
  for (const auto i : order) {
    const double upper =
        bounds[i]->highest == unbounded ? infinity : static_cast<double>(bounds[i]->highest) + 0.5;
    const double lower = bands.empty() ? -infinity : bands.back().upper;
    if (upper <= lower) continue;  // a row that reaches no higher than one before it (elevated's diastolic)
    bands.push_back({categories[i], lower, upper});
  }
  return bands;
}

}  // namespace cardiolith::tool
