// import, and the export formats that import reads back.

#include "tool_test.hpp"

namespace cardiolith::tool::testing {
namespace {

class ImportCommandTest : public ToolTest {
 protected:
  ImportCommandTest() {
    succeed({"add", "128/84/68", "--at", "2026-03-02 08:00", "--tag", "Morning", "--tag", "Left arm",
             "--note", "a, \"b\"\nc"});
    succeed({"add", "120/80/77", "--at", "2026-02-25 08:00", "--note", "=1+2"});
    succeed({"add", "131/85/70", "--at", "2026-02-26 21:30", "--note", "'hello"});
  }

  ToolResult importInto(const std::filesystem::path& folder, const std::filesystem::path& file) {
    return run({"import", file.string(), "--data-dir", folder.string()}, false);
  }

  std::string writeInput(const std::string& name, const std::string& text) {
    writeFile(root_ / name, text);
    return (root_ / name).string();
  }
};

TEST_F(ImportCommandTest, EveryExportFormatImportsBackIntoAnEmptyLog) {
  const auto original = listed();
  for (const std::string format : {"csv", "tsv", "json", "fhir"}) {
    SCOPED_TRACE(format);
    const auto file = root_ / ("export." + format);
    succeed({"export", "--format", format, "--out", file.string()});
    const auto folder = root_ / ("from-" + format);
    const auto imported = importInto(folder, file);
    ASSERT_EQ(imported.exitCode, 0) << imported.err;
    EXPECT_EQ(imported.out, "Imported: 3 added, 0 already there, 0 skipped, 0 refused.\n");
    const auto back =
        nlohmann::json::parse(run({"list", "--json", "--data-dir", folder.string()}, false).out);
    auto expected = original;
    if (format == "fhir") {  // FHIR has no place for the log's tags
      for (auto& reading : expected) reading["tags"] = nlohmann::json::array();
    }
    EXPECT_EQ(back["readings"], expected);
    // The same file again adds nothing.
    EXPECT_THAT(importInto(folder, file).out, HasSubstr("0 added, 3 already there"));
  }
}

TEST_F(ImportCommandTest, OneInvalidRowFailsTheWholeImportUnlessSkipped) {
  const auto before = readFile(readingsFile_);
  const auto file = writeInput("monitor.csv",
                               "Date,Time,Systolic (mmHg),Diastolic (mmHg),Pulse (bpm),Notes\r\n"
                               "Jan 12 2025,8:12 AM,128,82,71,-\r\n"
                               "Jan 11 2025,8:12 PM,12x,82,71,-\r\n"
                               "Jan 10 2025,8:12 PM,82,128,71,-\r\n"
                               "Jan 09 2025,8:12 PM,125,80,-,-\r\n");
  const auto failed = refusal({"import", file});
  EXPECT_THAT(failed, HasSubstr("nothing imported: 2 rows are invalid"));
  EXPECT_THAT(failed, HasSubstr("monitor.csv line 3: the systolic pressure \"12x\" is not a whole number"));
  EXPECT_THAT(failed, HasSubstr("line 4: the diastolic pressure 128 is not below the systolic pressure 82"));
  EXPECT_EQ(readFile(readingsFile_), before) << "a failed import must leave the log byte for byte";

  const auto dryRun = succeed({"import", file, "--skip-invalid", "--dry-run"});
  EXPECT_THAT(dryRun, HasSubstr("Would add 2025-01-12 08:12  128/82 mmHg, pulse 71: High"));
  EXPECT_THAT(dryRun,
              HasSubstr("Dry run, nothing changed: 1 would be added, 0 already there, 1 skipped (1 no "
                        "pulse), 2 refused."));
  EXPECT_EQ(readFile(readingsFile_), before);

  const auto skipping = succeed({"import", file, "--skip-invalid"});
  EXPECT_THAT(skipping, HasSubstr("Refused " + file + " line 3: the systolic pressure \"12x\""));
  EXPECT_THAT(skipping, HasSubstr("Imported: 1 added, 0 already there, 1 skipped (1 no pulse), 2 refused."));
  EXPECT_EQ(listed().size(), 4u);
  EXPECT_THAT(succeed({"import", file, "--skip-invalid", "--force"}),
              HasSubstr("Imported: 1 added, 1 already there, 1 skipped (1 no pulse), 1 refused."));
}

TEST_F(ImportCommandTest, UnknownTagTitlesAreAnErrorUnlessCreated) {
  const auto file =
      writeInput("tags.tsv", "Date\tSys\tDia\tPulse\tTags\n2025-01-12 08:12\t128\t82\t71\tMorning; Gym\n");
  EXPECT_THAT(refusal({"import", file}), HasSubstr("the log has no tag titled \"Gym\""));
  EXPECT_THAT(succeed({"import", file, "--create-tags"}), HasSubstr("Created the tag \"Gym\""));
  EXPECT_EQ(listed({"--to", "2025-12-31"})[0]["tags"], nlohmann::json::parse(R"(["Gym","Morning"])"));
}

TEST_F(ImportCommandTest, RefusesWhatItCannotRead) {
  const auto missing = (root_ / "missing.csv").string();  // named once, not twice
  const std::pair<Arguments, std::string> cases[] = {
      {{writeInput("broken.json", R"({"readings":[{"id":1}]})")}, "readings[0].id"},
      {{writeInput("pattern.csv", "Date,Sys,Dia,Pulse\n2025-01-12,128,82,71\n"), "--date-format",
        "dd.MM.yyyy"},
       "line 2: the date"},
      {{missing}, "nothing imported: " + missing + ": cannot open the file ("},
      // Columns are checked before any file is read, whatever its format.
      {{writeInput("empty.json", R"({"readings":[]})"), "--columns", "date,oben"},
       "--columns: \"oben\" is not a role"},
  };
  for (const auto& [arguments, message] : cases)
    EXPECT_THAT(refusal(joined({"import"}, arguments)), HasSubstr(message)) << arguments[0];
  EXPECT_EQ(listed().size(), 3u);
}

}  // namespace
}  // namespace cardiolith::tool::testing
