#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tool_test.hpp"

namespace cardiolith::tool::testing {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using ::testing::Not;

class TagsCommandTest : public ToolTest {
 protected:
  std::vector<std::string> tagRows() {
    const auto result = run({"tags"});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    auto rows = lines(result.out);
    return {rows.begin() + 2, rows.end()};  // past the heading and its rule
  }

  nlohmann::json firstReadingTags() {
    return nlohmann::json::parse(run({"list", "--json"}).out)["readings"][0]["tags"];
  }
};

TEST_F(TagsCommandTest, StartsWithTheDefaultTagsInTitleOrder) {
  const auto rows = tagRows();
  ASSERT_EQ(rows.size(), 10u);
  EXPECT_THAT(rows.front(), MatchesRegex("After medication +#00c7be"));
  EXPECT_THAT(rows.back(), MatchesRegex("Without medication +#30b0c7"));
  EXPECT_EQ(run({"tags", "list"}).out, run({"tags"}).out);
  EXPECT_FALSE(std::filesystem::exists(tagsFile())) << "listing must not write";
}

TEST_F(TagsCommandTest, AddRenameAndDelete) {
  const auto added = run({"tags", "add", "Home monitor", "--color", "#34C759"});
  ASSERT_EQ(added.exitCode, 0) << added.err;
  EXPECT_EQ(added.out, "Added tag \"Home monitor\" (#34c759)\n");
  EXPECT_THAT(tagRows(), Contains(MatchesRegex("Home monitor +#34c759")));

  ASSERT_EQ(run({"add", "120/80/60", "--tag", "home monitor"}).exitCode, 0);
  EXPECT_EQ(firstReadingTags(), nlohmann::json({"Home monitor"}));

  // The reading keeps the tag under its new title.
  const auto renamed = run({"tags", "rename", "Home monitor", "Clinic"});
  ASSERT_EQ(renamed.exitCode, 0) << renamed.err;
  EXPECT_EQ(firstReadingTags(), nlohmann::json({"Clinic"}));
  EXPECT_THAT(tagRows(), Not(Contains(MatchesRegex("Home monitor.*"))));

  const auto deleted = run({"tags", "delete", "clinic"});
  ASSERT_EQ(deleted.exitCode, 0) << deleted.err;
  EXPECT_THAT(deleted.out, HasSubstr("Deleted tag \"Clinic\""));
  EXPECT_EQ(firstReadingTags(), nlohmann::json::array());
  EXPECT_EQ(tagRows().size(), 10u);
  EXPECT_EQ(nlohmann::json::parse(run({"list", "--json"}).out)["readings"].size(), 1u) << "the reading stays";
}

TEST_F(TagsCommandTest, RefusesConfusingChanges) {
  struct Case {
    std::vector<std::string> arguments;
    std::string message;
  };
  const std::vector<Case> cases{
      {{"tags", "add", "Morning"}, "there is already a tag \"Morning\""},
      {{"tags", "add", "MORNING"}, "there is already a tag \"Morning\""},
      {{"tags", "add", "  "}, "a tag needs a title that isn't blank"},
      {{"tags", "add", "Walk", "--color", "blue"}, "--color: \"blue\" is not a colour"},
      {{"tags", "add", "Walk", "--color", "12345g"}, "is not a colour"},
      {{"tags", "rename", "Morning", "Evening"}, "there is already a tag \"Evening\""},
      {{"tags", "rename", "Breakfast", "Lunch"}, "there is no tag \"Breakfast\"; the tags are: "},
      {{"tags", "delete", "Breakfast"}, "there is no tag \"Breakfast\""},
  };
  for (const auto& [arguments, message] : cases) {
    const auto result = run(arguments);
    EXPECT_EQ(result.exitCode, 1) << ::testing::PrintToString(arguments);
    EXPECT_THAT(result.err, HasSubstr(message)) << ::testing::PrintToString(arguments);
  }
  EXPECT_FALSE(std::filesystem::exists(tagsFile())) << "nothing was changed, so nothing was saved";
}

TEST_F(TagsCommandTest, RenamingToAnotherCaseOfItsOwnTitleIsAllowed) {
  ASSERT_EQ(run({"tags", "rename", "Morning", "morning"}).exitCode, 0);
  EXPECT_THAT(tagRows(), Contains(MatchesRegex("morning +#af52de")));
}

TEST_F(TagsCommandTest, AnUnreadableTagsFileIsNeverReplaced) {
  std::filesystem::create_directories(data_);
  writeFile(tagsFile(), "[{\"id\": broken");
  const auto result = run({"tags", "add", "Walk"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.err, HasSubstr("can't read the tags file " + tagsFile().string()));
  EXPECT_EQ(readFile(tagsFile()), "[{\"id\": broken");
}

}  // namespace
}  // namespace cardiolith::tool::testing
