#include <gtest/gtest.h>

#include <stdexcept>

#include "cardiolith/platform/date_formatter.hpp"
#include "cardiolith/platform/list_formatter.hpp"

namespace cardiolith {
namespace {

TEST(DateFormatterTest, FormatsInTheGivenZoneAndLocale) {
  const Date date = Date::fromTimeIntervalSince1970(1736942400.25);  // 2025-01-15 12:00:00.25 UTC
  EXPECT_EQ(DateFormatter("yyyy-MM-dd HH:mm:ss.SSS", "en_US", "UTC").string(date), "2025-01-15 12:00:00.250");
  EXPECT_EQ(DateFormatter("HH:mm", "en_US", "Asia/Kolkata").string(date), "17:30");
  EXPECT_EQ(DateFormatter("EEEE d MMMM", "de_DE", "UTC").string(date), "Mittwoch 15 Januar");
  EXPECT_EQ(DateFormatter("yyyy", "en_US", "UTC").string(Date(0)), "2001");
  EXPECT_THROW(DateFormatter("HH", "en_US", "Nowhere/Land"), std::invalid_argument);
}

TEST(ListFormatterTest, JoinsItemsInTheLocalesStyle) {
  const ListFormatter english("en_US");
  EXPECT_EQ(english.string({}), "");
  EXPECT_EQ(english.string({"a", "b", "c"}), "a, b, and c");
  EXPECT_EQ(ListFormatter("de_DE").string({"a", "b", "c"}), "a, b und c");
}

}  // namespace
}  // namespace cardiolith
