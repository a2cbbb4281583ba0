// The tool's reading of a pressure typed on the command line, without a subprocess.

#include "input/pressure_input.hpp"

#include <gtest/gtest.h>

#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

// What a text reads as ("128/82/71", "128/82/-" without a pulse), or the message that refuses it.
std::string readAs(const std::string& text, bool allowPulse) {
  try {
    const auto input = parsePressure(text, allowPulse);
    return std::to_string(input.systolic) + "/" + std::to_string(input.diastolic) + "/" +
           (input.pulse ? std::to_string(*input.pulse) : "-");
  } catch (const ToolError& error) {
    return error.what();
  }
}

TEST(PressureInputTest, ReadsPairsAndReadingsAndRefusesTheRestWithAnExample) {
  const std::string pair = " is not a blood-pressure pair; write systolic/diastolic in mmHg, e.g. 128/82";
  const std::string reading =
      " is not a blood-pressure reading; write systolic/diastolic in mmHg, e.g. 128/82, or 128/82/71 with "
      "the pulse";
  const struct {
    std::string text;
    bool allowPulse;
    std::string expected;
  } cases[] = {
      {"128/82", false, "128/82/-"},
      {"128/82/71", true, "128/82/71"},
      {"128/82", true, "128/82/-"},
      {"128/82/71", false, "\"128/82/71\"" + pair},
      {"128-82", true, "\"128-82\"" + reading},
      {"128/82/70/1", true, "\"128/82/70/1\"" + reading},
      {"99999999999999999999/82", true, "\"99999999999999999999/82\"" + reading},
      {"135/-95", false, "\"135/-95\"" + pair},
      {"/82", false, "\"/82\"" + pair},
      {"128/", false, "\"128/\"" + pair},
      {"+128/82", false, "\"+128/82\"" + pair},
  };
  for (const auto& test : cases) EXPECT_EQ(readAs(test.text, test.allowPulse), test.expected) << test.text;
}

}  // namespace
}  // namespace cardiolith::tool
