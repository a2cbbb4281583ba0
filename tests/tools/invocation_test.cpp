// What needs no data folder: the default places for the log, and classify.

#include "tool_test.hpp"

namespace cardiolith::tool::testing {
namespace {

using InvocationTest = ToolTest;

TEST_F(InvocationTest, WithoutDataDirTheLogLivesInTheDefaultPlaces) {
  EXPECT_THAT(run({}, false).out, HasSubstr("Start with:  cardiolith add 128/82 --pulse 71"));
  const auto container = root_ / "container";
  environment_["CARDIOLITH_GROUP_CONTAINER"] = container.string();
  environment_["CARDIOLITH_DOCUMENTS_DIR"] = (root_ / "documents").string();
  ASSERT_EQ(run({"add", "120/80/60"}, false).exitCode, 0);
  EXPECT_TRUE(std::filesystem::exists(container / "readings"));
  EXPECT_FALSE(std::filesystem::exists(container / "readings.lock"));  // the folder itself is locked
  EXPECT_THAT(run({"list"}, false).out, HasSubstr("120   80     60"));
}

// The category texts are unit-tested in cli/; these prove that classify prints them, as text and as JSON
// (and, for a pair outside the table, EmptyLogTest.APairOutsideTheCategoryTableIsToldWhichRowItMissed).
TEST_F(InvocationTest, ClassifyNamesTheCategoryOfAPair) {
  EXPECT_THAT(succeed({"classify", "135/95"}),
              ::testing::StartsWith("135/95 mmHg: High (systolic 130-139, or diastolic 81-89)"));
  EXPECT_EQ(succeed({"classify", "150/85", "--json"}),
            R"({"systolic":150,"diastolic":85,"category":"high","name":"High"})"
            "\n");
}

TEST_F(InvocationTest, VersionComesFromTheBuild) {
  EXPECT_EQ(succeed({"--version"}), "cardiolith " CARDIOLITH_VERSION "\n");
  EXPECT_EQ(succeed({"version"}), "cardiolith " CARDIOLITH_VERSION "\n");
}

// The bash script, sourced by bash, completes commands, subcommands, options and their values.
TEST_F(InvocationTest, BashCompletionOffersCommandsOptionsAndValues) {
  const auto script = root_ / "cardiolith.bash", driver = root_ / "complete.sh";
  writeFile(script, succeed({"completion", "bash"}));
  // Completes the last of its arguments, as bash does when the user presses Tab there.
  writeFile(driver,
            "source \"$1\"; shift\n"
            "COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); _cardiolith; echo \"${COMPREPLY[*]}\"\n");
  const std::vector<std::pair<Arguments, std::string>> cases{
      {{"ex"}, "export"},
      {{"tags", "a"}, "add"},
      {{"export", "--format", ""}, "csv tsv json fhir"},
      {{"list", "--color", "a"}, "auto always"},
      {{"--color", "n"}, "never"},
      {{"list", "--w"}, "--wide"},
      {{"completion", "f"}, "fish"},
  };
  for (const auto& [words, expected] : cases) {
    std::string command = "bash " + driver.string() + " " + script.string() + " cardiolith";
    for (const auto& word : words) command += " '" + word + "'";
    EXPECT_EQ(shellOutput(command), expected + "\n") << command;
  }
  EXPECT_THAT(succeed({"completion", "zsh"}), ::testing::StartsWith("#compdef cardiolith\n"));
  EXPECT_THAT(succeed({"completion", "fish"}),
              HasSubstr("complete -c cardiolith -n 'not __fish_seen_subcommand_from"));
}

}  // namespace
}  // namespace cardiolith::tool::testing
