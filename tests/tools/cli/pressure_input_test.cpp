// The tool's reading of a pressure typed on the command line, without a subprocess.

#include "input/pressure_input.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

using ::testing::HasSubstr;

struct PressureCase {
  std::string text;
  bool allowPulse;
  std::optional<PressureInput> expected;  // absent: refused
};

TEST(PressureInputTest, ReadsPairsAndReadingsAndRefusesTheRest) {
  const std::vector<PressureCase> cases{
      {"128/82", false, PressureInput{128, 82, std::nullopt}},
      {"128/82/71", true, PressureInput{128, 82, 71}},
      {"128/82", true, PressureInput{128, 82, std::nullopt}},
      {"128/82/71", false, std::nullopt},
      {"128-82", true, std::nullopt},
      {"128/82/70/1", true, std::nullopt},
      {"99999999999999999999/82", true, std::nullopt},
      {"135/-95", false, std::nullopt},
      {"/82", false, std::nullopt},
      {"128/", false, std::nullopt},
      {"+128/82", false, std::nullopt},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.text);
    if (!test.expected) {
      EXPECT_THROW((void)parsePressure(test.text, test.allowPulse), ToolError);
      continue;
    }
    const auto input = parsePressure(test.text, test.allowPulse);
    EXPECT_EQ(input.systolic, test.expected->systolic);
    EXPECT_EQ(input.diastolic, test.expected->diastolic);
    EXPECT_EQ(input.pulse, test.expected->pulse);
  }
}

TEST(PressureInputTest, RefusalGivesAnExample) {
  try {
    (void)parsePressure("128-82", true);
    FAIL() << "128-82 was read";
  } catch (const ToolError& error) {
    EXPECT_THAT(error.what(), HasSubstr("\"128-82\" is not a blood-pressure reading"));
    EXPECT_THAT(error.what(), HasSubstr("e.g. 128/82"));
  }
}

}  // namespace
}  // namespace cardiolith::tool
