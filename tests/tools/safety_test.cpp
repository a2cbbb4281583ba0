#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "tool_test.hpp"

namespace cardiolith::tool::testing {
namespace {

using ::testing::HasSubstr;

using SafetyTest = ToolTest;

TEST_F(SafetyTest, AnUnreadableReadingsFileIsReportedAndLeftUntouched) {
  std::filesystem::create_directories(data_);
  const std::string damaged = "{\"readings\":[{\"id\":\"A\",\"date\":1,\"systolic\":120";
  writeFile(readingsFile(), damaged);

  struct Case {
    std::vector<std::string> arguments;
    bool writes;
  };
  const std::vector<Case> cases{
      {{"add", "120/80/60"}, true},
      {{"sample", "--force"}, true},
      {{"list"}, false},
      {{"summary"}, false},
      {{"export"}, false},
      {{"chart", "--out", (root_ / "chart.svg").string()}, false},
  };
  for (const auto& [arguments, writes] : cases) {
    const auto result = run(arguments);
    EXPECT_EQ(result.exitCode, 1) << arguments[0];
    EXPECT_THAT(result.err, HasSubstr("can't read the readings file " + readingsFile().string()))
        << arguments[0];
    if (writes) {
      EXPECT_THAT(result.err, HasSubstr("Nothing was changed")) << arguments[0];
    }
    EXPECT_EQ(readFile(readingsFile()), damaged) << arguments[0];
  }
}

TEST_F(SafetyTest, ConcurrentAddsAllLand) {
  constexpr int count = 200;
  std::vector<ToolProcess> processes;
  processes.reserve(count);
  for (int i = 0; i < count; ++i) {
    processes.push_back(
        start({"add", std::to_string(100 + i % 50) + "/70/60", "--note", "add " + std::to_string(i)}));
  }
  for (auto& process : processes) {
    const auto result = process.wait();
    EXPECT_EQ(result.exitCode, 0) << result.err;
  }
  const auto readings = nlohmann::json::parse(run({"list", "--json"}).out)["readings"];
  ASSERT_EQ(readings.size(), static_cast<std::size_t>(count));
  std::set<std::string> notes;
  for (const auto& reading : readings) notes.insert(reading["notes"].get<std::string>());
  EXPECT_EQ(notes.size(), static_cast<std::size_t>(count));
}

TEST_F(SafetyTest, WithoutDataDirTheLogLivesInTheDefaultPlaces) {
  const auto container = root_ / "container";
  const std::map<std::string, std::string> places{
      {"CARDIOLITH_GROUP_CONTAINER", container.string()},
      {"CARDIOLITH_DOCUMENTS_DIR", (root_ / "documents").string()}};
  const auto added = runPlain({"add", "120/80/60"}, places);
  ASSERT_EQ(added.exitCode, 0) << added.err;
  EXPECT_TRUE(std::filesystem::exists(container / "readings"));
  EXPECT_TRUE(std::filesystem::exists(container / "readings.lock"));
  EXPECT_THAT(runPlain({"list"}, places).out, HasSubstr("120   80     60"));

  // Without the variables, the home folder's data folder.
  ASSERT_EQ(runPlain({"add", "121/80/60"}).exitCode, 0);
  EXPECT_TRUE(std::filesystem::exists(root_ / "home" / ".local" / "share" / "group.cardiolith" / "readings"));
}

TEST_F(SafetyTest, UsageErrorsGoToStandardErrorWithStatusTwo) {
  struct Case {
    std::vector<std::string> arguments;
    std::string message;
  };
  const std::vector<Case> cases{
      {{"frobnicate"}, "frobnicate"},
      {{"add"}, "reading is required"},
      {{"add", "120/80/60", "--pulse", "many"}, "--pulse"},
      {{"list", "--colour"}, "--colour"},
  };
  for (const auto& [arguments, message] : cases) {
    const auto result = run(arguments);
    EXPECT_EQ(result.exitCode, 2) << arguments[0];
    EXPECT_THAT(result.err, HasSubstr(message)) << arguments[0];
    EXPECT_EQ(result.out, "") << arguments[0];
  }
}

TEST_F(SafetyTest, EveryCommandHasHelp) {
  for (const auto& command : {"add", "list", "summary", "classify", "export", "tags", "sample", "chart"}) {
    const auto result = run({command, "--help"});
    EXPECT_EQ(result.exitCode, 0) << command;
    EXPECT_THAT(result.out, HasSubstr("Usage:")) << command;
  }
  const auto bare = runPlain({});
  EXPECT_EQ(bare.exitCode, 0);
  EXPECT_THAT(bare.out, HasSubstr("Start with:  cardiolith add 128/82 --pulse 71"));
}

}  // namespace
}  // namespace cardiolith::tool::testing
