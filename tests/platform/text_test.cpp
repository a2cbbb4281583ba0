#include "cardiolith/platform/text.hpp"

#include <gtest/gtest.h>
#include <unicode/locid.h>

#include <algorithm>
#include <vector>

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

// Replacement finds the target under canonical equivalence, between whole characters, left to right and
// without overlaps; ASCII and invalid UTF-8 are matched byte for byte.
TEST(TextTest, ReplacesCanonicallyEquivalentOccurrences) {
  struct Case {
    const char* text;
    const char* target;
    const char* expected;
  };
  const Case cases[] = {
      {"caf\u00E9 et caf\u0065\u0301", "\u00E9", "caf_ et caf_"},
      {"caf\u00E9 et caf\u0065\u0301", "e\u0301", "caf_ et caf_"},
      {"\u1E69 s\u0323\u0307 s\u0307\u0323", "s\u0307\u0323", "_ _ _"},  // marks in any canonical order
      {"e\u0301 e", "e", "e\u0301 _"},                      // never inside a character with its accents
      {"\uAC00 \u1100\u1161", "\u1100", "\uAC00 _\u1161"},  // nor inside a precomposed syllable
      {"\u212B \u00C5", "\u00C5", "_ _"},                   // singletons: ANGSTROM SIGN is A with ring
      {"a;b\u037Ec", ";", "a_b_c"},  // GREEK QUESTION MARK is a semicolon, also for an ASCII target
      {"\u00E9;e\u0301;\u0301", ";", "\u00E9_e\u0301;\u0301"},  // ";" + U+0301 is another character
      {"\u00E9\u00E9\u00E9", "\u00E9\u00E9", "_\u00E9"},        // not overlapping
      {"aaa", "aa", "_a"},
      {"ABC abc", "b", "ABC a_c"},   // case-sensitive
      {"x\u00E9y", "", "x\u00E9y"},  // an empty target matches nothing
      {"\xC3 \xC3", "\xC3", "_ _"},  // invalid UTF-8: bytes as they are
  };
  for (const auto& [text, target, expected] : cases)
    EXPECT_EQ(text::replacingOccurrences(text, target, "_"), expected) << text << " / " << target;
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

TEST(TextTest, CaseFoldingMatchesTitlesThatDifferOnlyInCase) {
  const struct {
    const char *a, *b;
    bool same;
  } cases[] = {
      {"Morning", "mORNING", true},
      {"Straße", "STRASSE", true},
      {"\u00c9t\u00e9", "E\u0301T\u00c9", true},
      {"Morning", "Mornings", false},
      {"Ete", "\u00c9t\u00e9", false},
  };
  for (const auto& test : cases)
    EXPECT_EQ(text::caseFolded(test.a) == text::caseFolded(test.b), test.same) << test.a;
}

TEST(TextTest, LocaleOrderSortsAsPeopleRead) {
  const icu::Locale previous = icu::Locale::getDefault();
  UErrorCode status = U_ZERO_ERROR;
  icu::Locale::setDefault(icu::Locale("en_GB"), status);
  std::vector<std::string> titles{"zebra", "\u00e9clair", "Banana", "apple", "Zoo"};
  std::sort(titles.begin(), titles.end(),
            [](const std::string& a, const std::string& b) { return text::localeCompare(a, b) < 0; });
  EXPECT_EQ(titles, (std::vector<std::string>{"apple", "Banana", "\u00e9clair", "zebra", "Zoo"}));
  EXPECT_LT(text::localeCompare("a", "A"), 0);
  EXPECT_EQ(text::localeCompare("e\u0301", "\u00e9"), 0) << "canonically equal texts sort together";
  icu::Locale::setDefault(previous, status);
}

}  // namespace
}  // namespace cardiolith
