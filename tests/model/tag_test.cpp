#include "cardiolith/model/tag.hpp"

#include <gtest/gtest.h>

#include <unordered_set>

namespace cardiolith {
namespace {

const UUID kID = *UUID::parse("A1B2C3D4-0000-4000-8000-000000000001");

TEST(TagTest, EqualityComparesEveryField) {
  const Tag tag{kID, "Morning", "007aff"};
  EXPECT_EQ(tag, (Tag{kID, "Morning", "007aff"}));
  EXPECT_NE(tag, (Tag{UUID{}, "Morning", "007aff"}));
  EXPECT_NE(tag, (Tag{kID, "Evening", "007aff"}));
  EXPECT_NE(tag, (Tag{kID, "Morning", "ff3b30"}));
}

TEST(TagTest, TextComparesAndHashesUnderCanonicalEquivalence) {
  const Tag precomposed{kID, "Caf\u00e9", "\u00e9"};
  const Tag decomposed{kID, "Cafe\u0301", "e\u0301"};
  EXPECT_EQ(precomposed, decomposed);
  EXPECT_EQ(std::hash<Tag>{}(precomposed), std::hash<Tag>{}(decomposed));
  std::unordered_set<Tag> set{precomposed, decomposed};
  EXPECT_EQ(set.size(), 1u);
}

}  // namespace
}  // namespace cardiolith
