// The tool's reading of dates and spans typed on the command line, without a subprocess. Kept to what any
// reading of dates must do; the exact forms accepted belong to the date input's own design.

#include "input/date_input.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

TEST(DateInputTest, RefusesTextsThatAreNoDateAndNamesTheOption) {
  for (const char* text :
       {"20.11.2026", "yesterday", "2026-04-31", "2026-11-20 24:00", "2026-11-20 7:45", ""}) {
    SCOPED_TRACE(text);
    try {
      (void)parseDateTime(text, "--at");
      ADD_FAILURE() << "read as a date";
    } catch (const ToolError& error) {
      EXPECT_THAT(error.what(), ::testing::StartsWith("--at: "));
    }
  }
}

TEST(DateInputTest, RangeEndTakesTheWholeDay) {
  const Date start = parseDateTime("2026-11-20", "--from");
  const Date end = parseRangeEnd("2026-11-20", "--to");
  EXPECT_GT(end, start);
  EXPECT_LT(end, parseDateTime("2026-11-21", "--from"));
  EXPECT_EQ(parseRangeEnd("2026-11-20 07:45", "--to"), parseDateTime("2026-11-20 07:45", "--from"));
  EXPECT_THROW(requireOrdered(end, start), ToolError);
  EXPECT_NO_THROW(requireOrdered(start, end));
}

TEST(DateInputTest, SpansCountDaysOrWeeks) {
  struct Case {
    const char* text;
    std::optional<std::int64_t> days;  // absent: refused
  };
  const Case cases[] = {{"7", 7},
                        {"7d", 7},
                        {"2w", 14},
                        {"7x", std::nullopt},
                        {"0d", std::nullopt},
                        {"-1", std::nullopt},
                        {"", std::nullopt}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    if (c.days) {
      EXPECT_EQ(parseSpanDays(c.text, "--last"), *c.days);
    } else {
      EXPECT_THROW((void)parseSpanDays(c.text, "--last"), ToolError);
    }
  }
}

}  // namespace
}  // namespace cardiolith::tool
