#include "cardiolith/analysis/plausibility.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace cardiolith {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// The ranges are inclusive at both ends; each value just past an end is named, in the order systolic,
// diastolic, pulse, then the order of the pressures.
TEST(PlausibilityTest, NamesEachValuePastItsRangeAndPressuresInTheWrongOrder) {
  EXPECT_THAT(implausibilities(40, 20, 20), IsEmpty());
  EXPECT_THAT(implausibilities(300, 200, 250), IsEmpty());
  EXPECT_THAT(implausibilities(39, 19, 19), ElementsAre("the systolic pressure 39 is outside 40-300 mmHg",
                                                        "the diastolic pressure 19 is outside 20-200 mmHg",
                                                        "the pulse 19 is outside 20-250 beats per minute"));
  EXPECT_THAT(implausibilities(301, 201, 251),
              ElementsAre("the systolic pressure 301 is outside 40-300 mmHg",
                          "the diastolic pressure 201 is outside 20-200 mmHg",
                          "the pulse 251 is outside 20-250 beats per minute"));
  EXPECT_THAT(implausibilities(100, 100, 70),
              ElementsAre("the diastolic pressure 100 is not below the systolic pressure 100 (were they "
                          "swapped?)"));
  EXPECT_THAT(implausibilities(101, 100, 70), IsEmpty());
}

}  // namespace
}  // namespace cardiolith
