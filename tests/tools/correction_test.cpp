// Correcting the log: edit, delete and undo by short id, end to end, and their lock.

#include <set>

#include "tool_test.hpp"

namespace cardiolith::tool::testing {
namespace {

using CorrectionTest = ToolTest;
using nlohmann::json;

std::string idOf(const json& reading) { return reading["id"].get<std::string>(); }

// The readings and tags files as they are, or "-" for a file that isn't there.
std::pair<std::string, std::string> files(const std::filesystem::path& readings,
                                          const std::filesystem::path& tags) {
  const auto content = [](const std::filesystem::path& path) {
    return std::filesystem::exists(path) ? readFile(path) : std::string("-");
  };
  return {content(readings), content(tags)};
}

TEST_F(CorrectionTest, ATypoIsCorrectedDeletedAndUndoneByShortId) {
  succeed({"add", "138/85/71", "--at", "2026-11-20 7:45"});
  const std::string afterFirst = readFile(readingsFile_);
  succeed({"add", "183/85/70", "--at", "2026-11-20 7:47", "--note", "typo"});
  const std::string id = idOf(listed()[0]);
  const std::string shortId = id.substr(0, 8);

  EXPECT_EQ(succeed({"edit", id.substr(0, 4), "138/85", "--no-note", "--tag", "morning"}),
            "Before: " + shortId + "  2026-11-20 07:47  183/85 mmHg, pulse 70: High\nAfter:  " + shortId +
                "  2026-11-20 07:47  138/85 mmHg, pulse 70: High\n  Tags: Morning\n");
  EXPECT_EQ(listed()[0],
            json::parse(R"({"id":")" + id +
                        R"(","date":"2026-11-20T07:47:00Z","systolic":138,)"
                        R"("diastolic":85,"pulse":70,"category":"high","tags":["Morning"],"notes":null})"));
  EXPECT_EQ(succeed({"delete", id.substr(0, 6)}),
            "Deleted " + shortId +
                "  2026-11-20 07:47  138/85 mmHg, pulse 70: High\n(cardiolith undo brings it back)\n");
  EXPECT_EQ(readFile(readingsFile_), afterFirst);

  EXPECT_THAT(succeed({"undo"}),
              MatchesRegex("Undid: cardiolith --data-dir .* delete " + id.substr(0, 6) + "\n  brought back " +
                           shortId + "  2026-11-20 07:47  138/85.*\n"));
  EXPECT_THAT(succeed({"undo"}), HasSubstr("  put back " + shortId +
                                           "  2026-11-20 07:47  183/85 mmHg, pulse 70: "
                                           "High (was 2026-11-20 07:47  138/85 mmHg, pulse 70: High)\n"));
  EXPECT_THAT(succeed({"undo"}), HasSubstr("  removed " + shortId));
  succeed({"undo"});
  EXPECT_FALSE(std::filesystem::exists(readingsFile_)) << "the first add made the file; its undo removes it";
}

TEST_F(CorrectionTest, AmbiguousPrefixesListTheCandidatesWithIdsThatTellThemApart) {
  writeFile(
      readingsFile_,
      R"({"readings":[)"
      R"({"id":"ABCD1234-0000-4000-8000-000000000001","date":0,"systolic":120,"diastolic":80,"pulse":60},)"
      R"({"id":"ABCD1234-9000-4000-8000-000000000002","date":60,"systolic":121,"diastolic":80,"pulse":60},)"
      R"({"id":"FFFF0000-0000-4000-8000-000000000003","date":120,"systolic":122,"diastolic":80,"pulse":60}]})");
  EXPECT_EQ(refusal({"delete", "abcd"}),
            "cardiolith: \"abcd\" is the start of 2 readings' ids; type more of the one you mean:\n"
            "  ABCD1234-0  2001-01-01 00:00  120/80 mmHg, pulse 60: Normal\n"
            "  ABCD1234-9  2001-01-01 00:01  121/80 mmHg, pulse 60: Elevated\n");
  EXPECT_THAT(lines(succeed({"list"}))[2], MatchesRegex("FFFF0000 +2001-01-01 00:02 .*"));
  EXPECT_THAT(succeed({"delete", "abcd1234-9", "FFFF"}), HasSubstr("Deleted ABCD1234-9 "));
  EXPECT_EQ(listed().size(), 1u);
}

TEST_F(CorrectionTest, UndoRefusesToOverwriteAChangeMadeByAnotherProgram) {
  succeed({"add", "120/80/60", "--at", "2026-11-20 8:00"});
  succeed({"tags", "add", "Clinic"});
  const std::string edited = R"({"readings":[]})";
  writeFile(readingsFile_, edited);
  succeed({"add", "121/80/60", "--at", "2026-11-20 9:00"});
  EXPECT_THAT(succeed({"undo"}), HasSubstr("removed"));
  EXPECT_EQ(readFile(readingsFile_), edited);
  EXPECT_THAT(succeed({"undo"}), HasSubstr("the tags are the ten default ones again"));
  EXPECT_THAT(refusal({"undo"}),
              HasSubstr("can't undo \"cardiolith --data-dir " + data_.string() +
                        " add 120/80/60 --at '2026-11-20 8:00'\": the file " + readingsFile_.string() +
                        " has been changed since, by something other than cardiolith"));
}

// The undo history itself is unit-tested in cli/ with random changes; here every command that writes
// records what it wrote, so that undoing them one by one gives back both files byte for byte.
TEST_F(CorrectionTest, EveryKindOfChangeIsUndoneByteForByte) {
  succeed({"add", "120/80/60", "--at", "2026-11-01 8:00", "--tag", "Morning"});
  const std::string id = idOf(listed()[0]);
  const std::vector<Arguments> commands{{"sample", "--count", "3", "--force"},
                                        {"tags", "add", "Clinic"},
                                        {"edit", id, "130/85", "--note", "edited"},
                                        {"add", "125/80/70", "--at", "2026-11-02 9:00"},
                                        {"delete", id}};
  std::vector<std::pair<std::string, std::string>> states{files(readingsFile_, tagsFile_)};
  for (const auto& command : commands) {
    succeed(command);
    states.push_back(files(readingsFile_, tagsFile_));
    ASSERT_NE(states.back(), states[states.size() - 2]) << ::testing::PrintToString(command);
  }
  for (std::size_t step = states.size() - 1; step-- > 0;) {
    succeed({"undo"});
    ASSERT_EQ(files(readingsFile_, tagsFile_), states[step]) << "after undoing step " << step;
  }
}

TEST_F(CorrectionTest, AHundredAddsMixedWithEditsAndDeletesLoseNothingThatWasNotDeleted) {
  std::string log = R"({"readings":[)";
  for (int i = 0; i < 30; ++i) {
    log += std::string(i ? "," : "") + R"({"id":"OLD)" + std::to_string(1000 + i) + R"(","date":)" +
           std::to_string(i * 3600) + R"(,"systolic":120,"diastolic":80,"pulse":60})";
  }
  writeFile(readingsFile_, log + "]}");
  std::vector<Arguments> runs;
  for (int i = 0; i < 100; ++i) {
    runs.push_back({"add", std::to_string(100 + i) + "/70/60", "--note", "new " + std::to_string(i)});
    if (i % 20 == 0)
      runs.push_back({"delete", "OLD" + std::to_string(1000 + i / 5), "OLD" + std::to_string(1020 + i / 20)});
    else if (i % 5 == 0)
      runs.push_back({"delete", "OLD" + std::to_string(1000 + i / 5)});
    if (i % 20 == 10) runs.push_back({"edit", "OLD" + std::to_string(1025 + i / 20), "140/90/65"});
  }
  for (const auto& result : runAll(runs)) EXPECT_EQ(result.exitCode, 0) << result.err;

  const auto readings = listed();
  EXPECT_EQ(readings.size(), 105u) << "the 100 added and the 5 old ones left, none twice";
  std::set<std::string> notes, kept;
  for (const auto& reading : readings) {
    if (idOf(reading).starts_with("OLD")) {
      kept.insert(idOf(reading));
      EXPECT_EQ(reading["systolic"], 140) << "edited: " << idOf(reading);
    }
    if (reading["notes"].is_string()) notes.insert(reading["notes"].get<std::string>());
  }
  EXPECT_EQ(notes.size(), 100u) << "every add's own reading";
  EXPECT_EQ(kept, (std::set<std::string>{"OLD1025", "OLD1026", "OLD1027", "OLD1028", "OLD1029"}));
}

}  // namespace
}  // namespace cardiolith::tool::testing
