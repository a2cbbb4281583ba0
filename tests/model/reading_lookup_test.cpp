#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cardiolith/model/reading_lookup.hpp>

namespace cardiolith {
namespace {

using ::testing::ElementsAre;

std::shared_ptr<Reading> reading(std::string id, double seconds = 0, std::int64_t systolic = 120,
                                 std::int64_t diastolic = 80, std::int64_t pulse = 70) {
  return std::make_shared<Reading>(std::move(id), Date(seconds), systolic, diastolic, pulse, std::nullopt,
                                   std::nullopt, std::nullopt);
}

std::vector<std::string> idsOf(const ReadingList& readings) {
  std::vector<std::string> ids;
  for (const auto& entry : readings) ids.push_back(entry->id());
  return ids;
}

TEST(ShortestUniqueIdPrefixes, GrowPastTheLongestPrefixSharedWithAnyOtherId) {
  const ReadingList readings{reading("ABCDEF0123-1"), reading("abcdef0123-2"), reading("12345678AB"),
                             reading("123456789C"),   reading("FFFF"),         reading("FFFF")};
  EXPECT_THAT(shortestUniqueIdPrefixes(readings),
              ElementsAre("ABCDEF0123-1", "abcdef0123-2", "12345678A", "123456789", "FFFF", "FFFF"));
  EXPECT_THAT(shortestUniqueIdPrefixes({reading("0123456789")}, 4), ElementsAre("0123"));
  EXPECT_TRUE(shortestUniqueIdPrefixes({}).empty());
}

TEST(ReadingsWithIdPrefix, MatchIgnoringCaseAndPreferAWholeId) {
  const ReadingList readings{reading("ABCD"), reading("ABCDE1"), reading("abcde2"), reading("99")};
  const struct {
    const char* prefix;
    std::vector<std::string> expected;
  } cases[] = {
      {"abcde", {"ABCDE1", "abcde2"}}, {"ABCD", {"ABCD"}}, {"ABC", {"ABCD", "ABCDE1", "abcde2"}},
      {"abcde2", {"abcde2"}},          {"X", {}},          {"ABCDE12", {}},
  };
  for (const auto& test : cases)
    EXPECT_EQ(idsOf(readingsWithIdPrefix(readings, test.prefix)), test.expected) << test.prefix;
}

TEST(FindDuplicate, SameMinuteAndSameValuesOnly) {
  const ReadingList readings{reading("a", 600), reading("b", 719.9, 138, 85, 71), reading("c", 720)};
  const struct {
    double seconds;
    std::int64_t systolic, diastolic, pulse;
    const char* expected;
  } cases[] = {
      {660, 138, 85, 71, "b"}, {719, 138, 85, 71, "b"}, {720, 138, 85, 71, ""},  {659.5, 138, 85, 71, ""},
      {700, 138, 85, 72, ""},  {700, 183, 85, 71, ""},  {601, 120, 80, 70, "a"},
  };
  for (const auto& test : cases) {
    const auto candidate = reading("new", test.seconds, test.systolic, test.diastolic, test.pulse);
    const auto found = findDuplicate(readings, *candidate);
    EXPECT_EQ(found ? found->id() : "", test.expected) << test.seconds << " " << test.systolic;
  }
  EXPECT_EQ(findDuplicate(readings, *readings[0]), nullptr) << "a reading does not duplicate itself";
}

}  // namespace
}  // namespace cardiolith
