#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tool_test.hpp"

namespace cardiolith::tool::testing {
namespace {

using ::testing::ElementsAre;

std::size_t cellCount(const std::string& line, char separator) {
  return static_cast<std::size_t>(std::count(line.begin(), line.end(), separator)) + 1;
}

class ExportCommandTest : public ToolTest {
 protected:
  void SetUp() override {
    ToolTest::SetUp();
    // Every combination of tags and notes, including the awkward characters of a separated line.
    add({"132/86/72", "--at", "2026-11-20 07:45", "--tag", "Morning", "--tag", "Left arm", "--note",
         "dizzy, \"bad\" day\nslept late"});
    add({"120/80/60", "--at", "2026-11-18 08:00"});
    add({"125/81/66", "--at", "2026-11-19 08:00", "--note", "tab\there"});
    add({"118/76/64", "--at", "2026-11-21 08:00", "--tag", "Evening"});
  }

  void add(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "add");
    const auto result = run(arguments);
    ASSERT_EQ(result.exitCode, 0) << result.err;
  }
};

TEST_F(ExportCommandTest, WritesCsvOldestFirstWithAHeader) {
  const auto result = run({"export"});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_THAT(lines(result.out), ElementsAre("Date,Systolic,Diastolic,Pulse", "2026-11-18 08:00,120,80,60",
                                             "2026-11-19 08:00,125,81,66", "2026-11-20 07:45,132,86,72",
                                             "2026-11-21 08:00,118,76,64"));
}

TEST_F(ExportCommandTest, TagsAndNotesKeepTheirColumns) {
  const auto result = run({"export", "--tags", "--notes"});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_THAT(lines(result.out),
              ElementsAre("Date,Systolic,Diastolic,Pulse,Tags,Notes", "2026-11-18 08:00,120,80,60,,",
                          "2026-11-19 08:00,125,81,66,,tab\there",
                          "2026-11-20 07:45,132,86,72,Left arm; Morning,dizzy  'bad' day slept late",
                          "2026-11-21 08:00,118,76,64,Evening,"));
}

TEST_F(ExportCommandTest, EveryRowHasTheHeadersColumnCount) {
  struct Case {
    std::vector<std::string> arguments;
    char separator;
    std::size_t columns;
  };
  const std::vector<Case> cases{
      {{"export", "--notes"}, ',', 5},
      {{"export", "--tags"}, ',', 5},
      {{"export", "--tags", "--notes"}, ',', 6},
      {{"export", "--format", "tsv", "--notes"}, '\t', 5},
      {{"export", "--format", "tsv", "--tags", "--notes"}, '\t', 6},
  };
  for (const auto& [arguments, separator, columns] : cases) {
    const auto result = run(arguments);
    ASSERT_EQ(result.exitCode, 0) << result.err;
    const auto rows = lines(result.out);
    ASSERT_EQ(rows.size(), 5u) << ::testing::PrintToString(arguments);
    for (const auto& row : rows) EXPECT_EQ(cellCount(row, separator), columns) << row;
  }
}

TEST_F(ExportCommandTest, TsvReplacesTabsInsideCells) {
  const auto result = run({"export", "--format", "tsv", "--notes"});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(lines(result.out)[2], "2026-11-19 08:00\t125\t81\t66\ttab here");
}

TEST_F(ExportCommandTest, WritesToAFile) {
  const auto file = root_ / "export.csv";
  const auto result = run({"export", "--out", file.string()});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.out, "Exported 4 readings to " + file.string() + "\n");
  EXPECT_EQ(lines(readFile(file)).size(), 5u);

  const auto unwritable = run({"export", "--out", (root_ / "missing" / "export.csv").string()});
  EXPECT_EQ(unwritable.exitCode, 1);
  EXPECT_THAT(unwritable.err,
              ::testing::HasSubstr("couldn't write " + (root_ / "missing" / "export.csv").string()));
}

TEST_F(ExportCommandTest, NeverWritesOverTheLog) {
  const std::string log = readFile(readingsFile());
  const std::string target = (data_ / "." / "readings").string();
  for (const auto& arguments : {std::vector<std::string>{"export", "--out", target},
                                std::vector<std::string>{"chart", "--days", "100000", "--out", target}}) {
    const auto& command = arguments.front();
    const auto result = run(arguments);
    EXPECT_EQ(result.exitCode, 1) << command;
    EXPECT_THAT(result.err, ::testing::HasSubstr("won't write over " + readingsFile().string())) << command;
  }
  EXPECT_EQ(readFile(readingsFile()), log);
}

TEST_F(ExportCommandTest, RefusesAnUnknownFormat) {
  const auto result = run({"export", "--format", "xlsx"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_THAT(result.err, ::testing::HasSubstr("--format"));
}

}  // namespace
}  // namespace cardiolith::tool::testing
