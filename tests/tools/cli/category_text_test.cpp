// The category texts and chart bands derived from the library's decision table.

#include "render/category_text.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <sstream>
#include <string_view>

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
}

// Each band as "key<upper", e.g. "low<89.5 normal<120.5 veryHigh<inf"; every band starts where the one before
// it ends, the first at minus infinity.
std::string bandsText(Pressure pressure) {
  std::ostringstream text;
  text.precision(17);  // every digit of an edge
  double lower = -std::numeric_limits<double>::infinity();
  for (const auto& band : categoryBands(pressure)) {
    EXPECT_EQ(band.lower, lower) << categoryKey(band.category);
    lower = band.upper;
    text << (text.tellp() > 0 ? " " : "") << categoryKey(band.category) << "<" << band.upper;
  }
  return text.str();
}

// Band edges lie halfway between the last value of one category and the first of the next; diastolic has
// no elevated band, since the elevated row bounds the diastolic no higher than the normal row does.
TEST(CategoryTextTest, BandsFollowTheTableEdges) {
  EXPECT_EQ(bandsText(Pressure::systolic), "low<89.5 normal<120.5 elevated<129.5 high<139.5 veryHigh<inf");
  EXPECT_EQ(bandsText(Pressure::diastolic), "low<59.5 normal<80.5 high<89.5 veryHigh<inf");
}

}  // namespace
}  // namespace cardiolith::tool
