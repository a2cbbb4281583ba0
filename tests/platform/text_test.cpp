#include "cardiolith/platform/text.hpp"

#include <gtest/gtest.h>

namespace cardiolith {
namespace {

const std::string kPrecomposed = "caf\xC3\xA9";     // café with U+00E9
const std::string kDecomposed = "cafe\xCC\x81";     // cafe followed by U+0301
const std::string kAngstromSign = "\xE2\x84\xAB";  // U+212B, canonically U+00C5

TEST(TextTest, CanonicalEquivalence) {
  struct Case {
    std::string a, b;
    bool equal;
  };
  const Case cases[] = {
      {kPrecomposed, kDecomposed, true},
      {kAngstromSign, "\xC3\x85", true},
      {"abc", "abc", true},
      {"abc", "ABC", false},  // no case folding
      {"abc", "abc ", false},  // no trimming
      {kPrecomposed, "cafe", false},
      {"", "", true},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(text::canonicallyEqual(c.a, c.b), c.equal) << c.a << " vs " << c.b;
    if (c.equal) {
      EXPECT_EQ(text::canonicalHash(c.a), text::canonicalHash(c.b)) << c.a;
    }
  }
}

TEST(TextTest, CanonicalFormIsNfcAndAsciiIsUnchanged) {
  EXPECT_EQ(text::canonical(kDecomposed), kPrecomposed);
  EXPECT_EQ(text::canonical("plain ASCII"), "plain ASCII");
}

TEST(TextTest, CompareOrdersByScalarValuesAfterNormalisation) {
  EXPECT_LT(text::canonicalCompare("Zebra", "apple"), 0);  // upper case before lower case
  EXPECT_LT(text::canonicalCompare("a", "b"), 0);
  EXPECT_EQ(text::canonicalCompare(kPrecomposed, kDecomposed), 0);
  // U+00E9 sorts after every ASCII letter once normalised, whatever the input form.
  EXPECT_GT(text::canonicalCompare(kDecomposed, "cafz"), 0);
}

TEST(TextTest, Utf8Validation) {
  EXPECT_TRUE(text::isValidUTF8(kPrecomposed));
  EXPECT_TRUE(text::isValidUTF8("\xF0\x9F\x98\x80"));  // emoji
  EXPECT_FALSE(text::isValidUTF8("\xC3"));             // truncated sequence
  EXPECT_FALSE(text::isValidUTF8("\xED\xA0\x80"));     // a lone surrogate
  EXPECT_FALSE(text::isValidUTF8("\xC0\xAF"));         // overlong "/"
  EXPECT_TRUE(text::isASCII("abc"));
  EXPECT_FALSE(text::isASCII(kPrecomposed));
}

}  // namespace
}  // namespace cardiolith
