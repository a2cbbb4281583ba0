#include "cardiolith/platform/text.hpp"

#include <gtest/gtest.h>

namespace cardiolith {
namespace {

const std::string precomposed = "caf\xC3\xA9";  // café with U+00E9
const std::string decomposed = "cafe\xCC\x81";  // cafe followed by U+0301

int sign(int value) { return (value > 0) - (value < 0); }

TEST(TextTest, EquivalenceHashAndOrderFollowTheCanonicalForm) {
  const struct {
    std::string a, b;
    int order;  // of a against b; zero for canonically equivalent texts
  } cases[] = {
      {precomposed, decomposed, 0},
      {"\xE2\x84\xAB", "\xC3\x85", 0},  // U+212B ANGSTROM SIGN is canonically U+00C5
      {"abc", "abc", 0},
      {"", "", 0},
      {"abc", "ABC", 1},  // no case folding; upper case sorts first
      {"Zebra", "apple", -1},
      {"abc", "abc ", -1},  // no trimming
      {precomposed, "cafe", 1},
      {decomposed, "cafz", 1},  // U+00E9 sorts after every ASCII letter, whatever the input form
  };
  for (const auto& [a, b, order] : cases) {
    EXPECT_EQ(sign(text::canonicalCompare(a, b)), order) << a << " vs " << b;
    EXPECT_EQ(sign(text::canonicalCompare(b, a)), -order) << b << " vs " << a;
    EXPECT_EQ(text::canonicallyEqual(a, b), order == 0) << a << " vs " << b;
    EXPECT_TRUE(order != 0 || text::canonicalHash(a) == text::canonicalHash(b)) << a;
  }
  EXPECT_EQ(text::canonical(decomposed), precomposed);
  EXPECT_EQ(text::canonical("plain ASCII"), "plain ASCII");
}

TEST(TextTest, Utf8Validation) {
  EXPECT_TRUE(text::isValidUTF8(precomposed));
  EXPECT_TRUE(text::isValidUTF8("\xF0\x9F\x98\x80"));  // emoji
  EXPECT_FALSE(text::isValidUTF8("\xC3"));             // truncated sequence
  EXPECT_FALSE(text::isValidUTF8("\xED\xA0\x80"));     // a lone surrogate
  EXPECT_FALSE(text::isValidUTF8("\xC0\xAF"));         // overlong "/"
  EXPECT_TRUE(text::isASCII("abc"));
  EXPECT_FALSE(text::isASCII(precomposed));
}

TEST(TextTest, PrintableTextHasNoControlsAndNoReordering) {
  const std::pair<std::string, std::string> cases[] = {
      {"plain note", "plain note"},
      {"\x1b]0;owned\x07title", " ]0;owned title"},          // escape sequence, bell
      {"two\r\nlines\nand\ttab\x7f", "two lines and tab "},  // CRLF is one space; DEL
      {"\xc2\x9b"
       "31m",
       " 31m"},                                          // C1 control introducer
      {"abc\u202Edcba\u2066x\u2069", "abcdcbax"},        // override, isolate
      {"caf\xc3\xa9 \xff", "caf\xc3\xa9 \xef\xbf\xbd"},  // é kept, bad byte replaced
  };
  for (const auto& [input, expected] : cases) EXPECT_EQ(text::printable(input), expected) << input;
}

TEST(TextTest, BlankMeansNothingVisible) {
  for (const std::string blank : {"", " \t", "\u00A0\u00A0", "\u200B", "\u200D\u2060\uFEFF \u3000"})
    EXPECT_TRUE(text::isBlank(blank)) << blank;
  for (const std::string visible : {"a", "\u00A0x", "\u200B.", "\u00E9"})
    EXPECT_FALSE(text::isBlank(visible)) << visible;
  EXPECT_EQ(text::codePointCount("caf\u00E9\u200B"), 5u);
}

}  // namespace
}  // namespace cardiolith
