#include "tool_test.hpp"

namespace cardiolith::tool::testing {
namespace {

using TagsCommandTest = ToolTest;
using nlohmann::json;

TEST_F(TagsCommandTest, ReadingsKeepTheirTagThroughARenameAndThemselvesThroughADelete) {
  const auto defaults = lines(succeed({"tags"}));
  ASSERT_EQ(defaults.size(), 12u);
  EXPECT_THAT(defaults[2], MatchesRegex("After medication +#00c7be"));
  EXPECT_THAT(defaults[11], MatchesRegex("Without medication +#30b0c7"));
  EXPECT_EQ(succeed({"tags", "list"}), succeed({"tags"}));
  EXPECT_FALSE(std::filesystem::exists(tagsFile_)) << "listing must not write";

  EXPECT_EQ(succeed({"tags", "add", "Home monitor", "--color", "#34C759"}),
            "Added tag \"Home monitor\" (#34c759)\n");
  EXPECT_THAT(succeed({"tags"}), MatchesRegex(".*\nHome monitor +#34c759\n.*"));
  succeed({"add", "120/80/60", "--tag", "home monitor"});
  EXPECT_EQ(listed()[0]["tags"], json({"Home monitor"}));

  EXPECT_EQ(succeed({"tags", "rename", "Home monitor", "Clinic"}),
            "Renamed tag \"Home monitor\" to \"Clinic\"\n");
  EXPECT_EQ(listed()[0]["tags"], json({"Clinic"}));

  EXPECT_THAT(refusal({"tags", "delete", "clinic"}),
              HasSubstr("1 reading carries the tag \"Clinic\" (cardiolith list --tag 'Clinic' shows them)"));
  EXPECT_EQ(succeed({"tags", "delete", "clinic", "--force"}),
            "Deleted tag \"Clinic\"; 1 reading no longer carries it\n");
  EXPECT_EQ(listed()[0]["tags"], json::array()) << "the reading stays, without the tag";
  EXPECT_EQ(lines(succeed({"tags"})), defaults);

  succeed({"tags", "rename", "Morning", "morning"});  // another case of its own title is not taken
  EXPECT_THAT(succeed({"tags"}), MatchesRegex(".*\nmorning +#af52de\n.*"));
}

TEST_F(TagsCommandTest, DeletingTheLastTagSaysTheDefaultsComeBackAndTitlesSortByLocale) {
  writeFile(tagsFile_,
            R"([{"id":"0F2B6A4C-1B7E-4C1A-9E55-2B7A1C9D3E01","title":"Clinic","colorHex":"34c759"}])");
  EXPECT_EQ(
      succeed({"tags", "delete", "CLINIC"}),
      "Deleted tag \"Clinic\"\nThat was the last tag, so the ten default tags come back (cardiolith tags "
      "shows them).\n");
  EXPECT_EQ(lines(succeed({"tags"})).size(), 12u);

  // ICU's own data has the collation, installed in the C library or not.
  environment_["LANG"] = "en_GB.UTF-8";
  for (const char* title : {"zebra", "\u00e9clair", "apple"}) succeed({"tags", "add", title});
  std::vector<std::string> order;
  for (const auto& row : lines(succeed({"tags"}))) {
    for (const std::string title : {"apple", "\u00e9clair", "zebra", "Evening"}) {
      if (row.starts_with(title + " ")) order.push_back(title);
    }
  }
  EXPECT_EQ(order, (std::vector<std::string>{"apple", "\u00e9clair", "Evening", "zebra"}));
}

}  // namespace
}  // namespace cardiolith::tool::testing
