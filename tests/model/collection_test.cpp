#include "cardiolith/model/collection.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace cardiolith {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::shared_ptr<Reading> readingAt(double seconds, std::int64_t systolic = 120, std::int64_t diastolic = 80,
                                   std::int64_t pulse = 70) {
  return std::make_shared<Reading>("r" + std::to_string(seconds), Date(seconds), systolic, diastolic, pulse,
                                   std::nullopt, std::nullopt, std::nullopt);
}

std::vector<double> datesOf(const ReadingList& readings) {
  std::vector<double> dates;
  for (const auto& reading : readings) dates.push_back(reading->date().timeIntervalSinceReferenceDate());
  return dates;
}

TEST(CollectionTest, FilteredKeepsBothBoundsAndInputOrder) {
  const ReadingList readings = {readingAt(30), readingAt(9.999),  readingAt(10),
                                readingAt(20), readingAt(20.001), readingAt(15)};
  const auto result = filtered(readings, Date(10), Date(20));
  EXPECT_THAT(datesOf(result), ElementsAre(10, 20, 15));
  EXPECT_EQ(result[0], readings[2]) << "the result shares the readings, it does not copy them";
  EXPECT_EQ(readings.size(), 6u);
}

TEST(CollectionTest, FilteredWithEqualOrReversedBounds) {
  const ReadingList readings = {readingAt(5), readingAt(10), readingAt(10), readingAt(11)};
  EXPECT_THAT(datesOf(filtered(readings, Date(10), Date(10))), ElementsAre(10, 10));
  EXPECT_THAT(filtered(readings, Date(11), Date(10)), IsEmpty());
  EXPECT_THAT(filtered({}, Date(0), Date(100)), IsEmpty());
  // Each bound drops only what is provably beyond it, so a date unordered with both (NaN) stays.
  EXPECT_EQ(filtered({readingAt(std::numeric_limits<double>::quiet_NaN())}, Date(0), Date(1)).size(), 1u);
}

TEST(CollectionTest, GetAllValuesProjectsEveryReadingInOrder) {
  const ReadingList readings = {readingAt(1, 120, 80, 60), readingAt(2, 130, 85, 72),
                                readingAt(3, 120, 80, 60)};
  EXPECT_THAT(getAllValues(readings, Reading::ValueType::diastolic), ElementsAre(80, 85, 80));
  EXPECT_THAT(getAllValues(readings, Reading::ValueType::systolic), ElementsAre(120, 130, 120));
  EXPECT_THAT(getAllValues(readings, Reading::ValueType::pulse), ElementsAre(60, 72, 60));
  EXPECT_THAT(getAllValues({}, Reading::ValueType::pulse), IsEmpty());
}

}  // namespace
}  // namespace cardiolith
