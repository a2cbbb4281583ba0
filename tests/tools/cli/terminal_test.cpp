// The tool's choices about the terminal, without a terminal.

#include "render/terminal.hpp"

#include <gtest/gtest.h>

#include "render/text_table.hpp"

namespace cardiolith::tool {
namespace {

TEST(TerminalTest, ColourFollowsTheChoiceTheTerminalAndNoColor) {
  const struct {
    const char* choice;
    bool isTerminal;
    const char* noColor;
    bool color;
  } cases[] = {
      {"auto", true, nullptr, true}, {"auto", false, nullptr, false}, {"auto", true, "1", false},
      {"auto", true, "", true},      {"never", true, nullptr, false}, {"always", false, nullptr, true},
      {"always", true, "1", true},
  };
  for (const auto& c : cases)
    EXPECT_EQ(wantsColor(c.choice, c.isTerminal, c.noColor), c.color)
        << c.choice << c.isTerminal << !!c.noColor;
}

TEST(TerminalTest, WidthComesFromTheTerminalThenColumns) {
  EXPECT_EQ(lineWidth(true, 120, "60"), 120u);
  EXPECT_EQ(lineWidth(true, std::nullopt, "60"), 60u);
  EXPECT_EQ(lineWidth(true, 0, "60"), 60u);  // a terminal that doesn't know its size reports 0
  for (const char* columns : {"", "x", "-5", "0", "60x"})
    EXPECT_EQ(lineWidth(true, std::nullopt, columns), std::nullopt);
  EXPECT_EQ(lineWidth(false, 120, "60"), std::nullopt);
}

TEST(TerminalTest, ShortenedTextEndsInAnEllipsisAndKeepsWholeCharacters) {
  EXPECT_EQ(shortened("short", 5), "short");
  EXPECT_EQ(shortened("longer", 5), "long\u2026");
  EXPECT_EQ(shortened("\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9", 3), "\u00e9\u00e9\u2026");
  EXPECT_EQ(shortened("abc", 1), "\u2026");
  EXPECT_EQ(shortened("abc", 0), "");
}

}  // namespace
}  // namespace cardiolith::tool
