#include "tool_test.hpp"

namespace cardiolith::tool::testing {
namespace {

using AddCommandTest = ToolTest;

TEST_F(AddCommandTest, StoresTheReadingAsTypedAndReportsIt) {
  const auto added = succeed({"add", "128/82", "--pulse", "71", "--at", "2026-11-20 07:45", "--note",
                              "after coffee", "--tag", "Morning", "--tag", "left ARM"});
  EXPECT_EQ(added, "Added 2026-11-20 07:45  128/82 mmHg, pulse 71: High  (id " +
                       listed()[0]["id"].get<std::string>().substr(0, 8) +
                       ")\n  Tags: Left arm, Morning\n"
                       "  Note: after coffee\nStarted a new log in " +
                       readingsFile_.string() + "\n");
  // The pulse as a third number may be repeated by --pulse; leading zeros are decimal.
  EXPECT_THAT(succeed({"add", "118/76/64", "--pulse", "064", "--at", "2026-11-21T00:00"}),
              MatchesRegex("Added 2026-11-21 00:00  118/76 mmHg, pulse 64: Normal  \\(id [0-9A-F]{8}\\)\n"));
  // The library reads launch arguments itself and empties the log when it sees this one; typed as a note
  // it must stay a note, and the two readings before it must stay.
  succeed(
      {"add", "80/90", "-p", "300", "--at", "2099-01-01 0:00", "--force", "--note", "DELETE_ALL_RECORDS"});

  auto readings = listed();
  ASSERT_EQ(readings.size(), 3u);
  EXPECT_THAT(readings[2]["id"].get<std::string>(),
              MatchesRegex("[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}"));
  for (auto& reading : readings) reading.erase("id");
  EXPECT_EQ(readings, nlohmann::json::parse(R"([
    {"date":"2099-01-01T00:00:00Z","systolic":80,"diastolic":90,"pulse":300,"category":"veryHigh","tags":[],
     "notes":"DELETE_ALL_RECORDS"},
    {"date":"2026-11-21T00:00:00Z","systolic":118,"diastolic":76,"pulse":64,"category":"normal","tags":[],"notes":null},
    {"date":"2026-11-20T07:45:00Z","systolic":128,"diastolic":82,"pulse":71,"category":"high",
     "tags":["Left arm","Morning"],"notes":"after coffee"}])"));
}

}  // namespace
}  // namespace cardiolith::tool::testing
