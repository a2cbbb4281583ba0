// The category texts and chart bands derived from the library's decision table.

#include "render/category_text.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <utility>
#include <vector>

namespace cardiolith::tool {
namespace {

using Category = BloodPressureAnalysis;

TEST(CategoryTextTest, RulesSpellOutTheTableRows) {
  EXPECT_EQ(categoryRule(Category::normal), "systolic 90-120 and diastolic 60-80");
  EXPECT_EQ(categoryRule(Category::high), "systolic 130-139, or diastolic 81-89");
  EXPECT_EQ(categoryRule(Category::veryHigh), "systolic 140 or more, or diastolic 90 or more");
  EXPECT_EQ(categoryRule(Category::unreadable), "no row of the category table holds this pair");
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
