// What needs no data folder: the default places for the log, and classify.

#include "tool_test.hpp"

namespace cardiolith::tool::testing {
namespace {

using InvocationTest = ToolTest;

TEST_F(InvocationTest, WithoutDataDirTheLogLivesInTheDefaultPlaces) {
  EXPECT_THAT(run({}, false).out, HasSubstr("Start with:  cardiolith add 128/82 --pulse 71"));
  ASSERT_EQ(run({"add", "121/80/60"}, false).exitCode, 0);
  EXPECT_TRUE(std::filesystem::exists(root_ / "home" / ".local" / "share" / "group.cardiolith" / "readings"));

  const auto container = root_ / "container";
  environment_["CARDIOLITH_GROUP_CONTAINER"] = container.string();
  environment_["CARDIOLITH_DOCUMENTS_DIR"] = (root_ / "documents").string();
  ASSERT_EQ(run({"add", "120/80/60"}, false).exitCode, 0);
  EXPECT_TRUE(std::filesystem::exists(container / "readings"));
  EXPECT_FALSE(std::filesystem::exists(container / "readings.lock"));  // the folder itself is locked
  EXPECT_THAT(run({"list"}, false).out, HasSubstr("120   80     60"));
}

// The category texts are unit-tested in cli/; these prove that classify prints them, as text and as JSON.
TEST_F(InvocationTest, ClassifyNamesTheCategoryOfAPair) {
  EXPECT_THAT(succeed({"classify", "135/95"}),
              ::testing::StartsWith("135/95 mmHg: High (systolic 130-139, or diastolic 81-89)"));
  EXPECT_THAT(succeed({"classify", "85/70"}),
              ::testing::StartsWith("85/70 mmHg: No category (outside the table) (systolic 85 is in the Low "
                                    "row (systolic 89 or less), but diastolic 70 is not"));
  EXPECT_EQ(succeed({"classify", "150/85", "--json"}),
            R"({"systolic":150,"diastolic":85,"category":"high","name":"High"})"
            "\n");
  EXPECT_EQ(nlohmann::json::parse(succeed({"classify", "85/70", "--json"}))["category"], "unreadable");
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
      {{"report", "--format", "h"}, "html"},
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

// Values the argument parser refuses are explained like every other error: what is expected, an example.
TEST_F(InvocationTest, ParserErrorsSayWhatIsExpected) {
  const std::vector<std::pair<Arguments, std::string>> cases{
      {{"add", "120/80", "--pulse", "71.0"},
       "--pulse takes a whole number of beats per minute, e.g. --pulse 71 (\"71.0\" is not a whole "
       "number)\n"},
      {{"sample", "--count", "0"},
       "--count takes a whole number of readings from 1 to 100000, e.g. --count 30"},
      {{"export", "--format", "xls"},
       "--format takes csv, tsv, json or fhir, e.g. cardiolith export --format csv"},
      {{"report", "--format", "doc"}, "--format takes text, html or pdf"},
      {{"completion", "tcsh"}, "the shell takes bash, zsh or fish, e.g. cardiolith completion bash"},
      {{"list", "--bogus"},
       "cardiolith list has no option --bogus; it takes --from, --to, --last, --tag, --reverse, --wide or "
       "--json\n"
       "See cardiolith list --help for what it takes."},
      {{"frobnicate"}, "cardiolith has no command \"frobnicate\"; it takes version, add, edit,"},
      {{"tags", "frob"}, "cardiolith tags has no command \"frob\"; it takes list, add, rename or delete"},
      {{"classify", "120/80", "extra"}, "cardiolith classify takes nothing more; \"extra\" was not expected"},
      {{"add"}, "cardiolith add needs the reading: Systolic/diastolic in mmHg (128/82)"},
      {{"chart"}, "cardiolith chart needs --out: The picture to write"},
      {{"add", "120/80", "--pulse"},
       "--pulse needs a value: a whole number of beats per minute, e.g. --pulse 71"},
      {{"report", "--to", "2026-11-20"}, "--to needs --from as well"},
  };
  for (const auto& [arguments, message] : cases) {
    const auto result = run(arguments);
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_THAT(result.err, ::testing::StartsWith("cardiolith: "));
    EXPECT_THAT(result.err, HasSubstr(message));
  }
}

}  // namespace
}  // namespace cardiolith::tool::testing
