// Integer options read as decimal numbers, whatever CLI11 would detect.

#include "input/decimal_options.hpp"

#include <gtest/gtest.h>

#include <optional>

namespace cardiolith::tool {
namespace {

TEST(DecimalOptionsTest, EveryIntegerOptionIsDecimal) {
  const struct {
    const char* typed;
    std::optional<std::int64_t> expected;  // absent: a parse error
  } cases[] = {{"71", 71},
               {"071", 71},
               {"0", 0},
               {"000", 0},
               {"-05", -5},
               {"0x47", {}},
               {"0b1", {}},
               {"0o17", {}},
               {"7.0", {}},
               {"", {}},
               {"1e2", {}},
               {"+", {}},
               {"99999999999999999999", {}}};
  for (const auto& test : cases) {
    CLI::App app;
    auto* command = app.add_subcommand("add");
    std::optional<std::int64_t> pulse;
    std::int64_t days = 7;
    command->add_option("--pulse", pulse);
    command->add_option("--days", days)->check(CLI::Range(1, 100));
    requireDecimalIntegers(app);
    std::optional<std::int64_t> parsed;
    try {
      app.parse(std::vector<std::string>{test.typed, "--pulse", "add"});  // parse() takes them reversed
      parsed = pulse;
    } catch (const CLI::ParseError&) {
    }
    EXPECT_EQ(parsed, test.expected) << test.typed;
  }
  // The check of the option's range sees the decimal value: 0100 is 100, not octal 64.
  CLI::App app;
  std::int64_t days = 7;
  app.add_option("--days", days)->check(CLI::Range(1, 99));
  requireDecimalIntegers(app);
  EXPECT_THROW(app.parse(std::vector<std::string>{"0100", "--days"}), CLI::ParseError);
  app.parse(std::vector<std::string>{"099", "--days"});
  EXPECT_EQ(days, 99);
}

}  // namespace
}  // namespace cardiolith::tool
