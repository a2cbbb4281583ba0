// The category texts and chart bands derived from the library's decision table.

#include "render/category_text.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <string_view>
#include <utility>
#include <vector>

namespace cardiolith::tool {
namespace {

using Category = BloodPressureAnalysis;

TEST(CategoryTextTest, EveryCategoryHasItsNameKeyAndRule) {
  const struct {
    Category category;
    std::string_view name, key, rule;
  } cases[] = {
      {Category::low, "Low", "low", "systolic 89 or less and diastolic 59 or less"},
      {Category::normal, "Normal", "normal", "systolic 90-120 and diastolic 60-80"},
      {Category::elevated, "Elevated", "elevated", "systolic 120-129 and diastolic 80 or less"},
      {Category::high, "High", "high", "systolic 130-139, or diastolic 81-89"},
      {Category::veryHigh, "Very high", "veryHigh", "systolic 140 or more, or diastolic 90 or more"},
      {Category::unreadable, "No category (outside the table)", "unreadable",
       "no row of the category table holds this pair"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(categoryName(c.category), c.name);
    EXPECT_EQ(categoryKey(c.category), c.key);
    EXPECT_EQ(categoryRule(c.category), c.rule);
  }
}

TEST(CategoryTextTest, APairOutsideTheTableIsToldWhichRowItMissed) {
  EXPECT_EQ(
      missedRule(85, 70),
      "systolic 85 is in the Low row (systolic 89 or less), but diastolic 70 is not (diastolic 59 or less)");
  EXPECT_EQ(
      missedRule(100, 50),
      "diastolic 50 is in the Low row (diastolic 59 or less), but systolic 100 is not (systolic 89 or less)");
  EXPECT_EQ(BloodPressureAnalyzer::result(100, 50), Category::unreadable);
}

// Band edges lie halfway between the last value of one category and the first of the next; diastolic has
// no elevated band, since the elevated row bounds the diastolic no higher than the normal row does.
TEST(CategoryTextTest, BandsFollowTheTableEdges) {
  struct Expected {
    Pressure pressure;
    std::vector<std::pair<Category, double>> uppers;  // the last band's upper edge is open
  };
  constexpr double open = std::numeric_limits<double>::infinity();
  const std::vector<Expected> cases{
      {Pressure::systolic,
       {{Category::low, 89.5},
        {Category::normal, 120.5},
        {Category::elevated, 129.5},
        {Category::high, 139.5},
        {Category::veryHigh, open}}},
      {Pressure::diastolic,
       {{Category::low, 59.5}, {Category::normal, 80.5}, {Category::high, 89.5}, {Category::veryHigh, open}}},
  };
  for (const auto& test : cases) {
    const auto bands = categoryBands(test.pressure);
    ASSERT_EQ(bands.size(), test.uppers.size());
    double lower = -open;
    for (std::size_t i = 0; i < bands.size(); ++i) {
      EXPECT_EQ(bands[i].category, test.uppers[i].first) << i;
      EXPECT_EQ(bands[i].lower, lower) << i;
      EXPECT_EQ(bands[i].upper, test.uppers[i].second) << i;
      lower = bands[i].upper;
    }
  }
}

}  // namespace
}  // namespace cardiolith::tool
