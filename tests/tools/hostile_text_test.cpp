// Text from the log reaches the terminal without anything that could drive it (the refusal table refuses tag
// titles that would not show as typed), and a reading in the crisis range gets its advice.

#include "tool_test.hpp"

namespace cardiolith::tool::testing {
namespace {

using ::testing::Not;
using HostileTextTest = ToolTest;

// Terminal escapes (CSI as ESC [ and as the C1 byte), an OSC title change, a bell and a right-to-left
// override, each in a note and a tag title; none reaches the output of list, undo or tags.
TEST_F(HostileTextTest, ControlCharactersAndOverridesNeverReachTheOutput) {
  const std::vector<std::string> hostile{"\x1b[2J\x1b[31mred",
                                         "\xc2\x9b"
                                         "31mred",
                                         "\x1b]0;title\x07",
                                         "abc\xe2\x80\xae"
                                         "cba",
                                         "\xe2\x81\xa6"
                                         "isolated"};
  auto tags = nlohmann::json::array();
  for (std::size_t i = 0; i < hostile.size(); ++i) {
    const std::string id = "00000000-0000-4000-8000-00000000000" + std::to_string(i);
    tags.push_back({{"id", id}, {"title", hostile[i]}, {"colorHex", "ff0000"}});
  }
  writeFile(tagsFile_, tags.dump());
  for (const auto& text : hostile) succeed({"add", "120/80/60", "--force", "--note", text});
  succeed({"tags", "delete", hostile.front()});  // undo names the tag it brings back

  for (const Arguments& command : {Arguments{"list"}, Arguments{"undo"}, Arguments{"tags"}}) {
    const std::string out = succeed(command);
    for (const std::string forbidden : {"\x1b", "\x07", "\xc2\x9b", "\xe2\x80\xae", "\xe2\x81\xa6"})
      EXPECT_THAT(out, Not(HasSubstr(forbidden))) << command.front();
    EXPECT_THAT(out, HasSubstr("[31mred")) << command.front();  // shown, but inert
  }
  // Scripts get the text exactly, escaped as JSON.
  EXPECT_EQ(listed().back()["notes"], hostile.front());
}

TEST_F(HostileTextTest, AnUnknownTagListsAtMostTwentyOthers) {
  for (int i = 0; i < 14; ++i) succeed({"tags", "add", "Tag " + std::to_string(100 + i)});
  succeed({"tags", "add", std::string(100, 'x')});  // the longest title allowed
  EXPECT_THAT(refusal({"add", "120/80/60", "--tag", "Nope"}),
              HasSubstr("and 5 more (cardiolith tags lists them all)"));  // 10 defaults + 15
}

// The edges of the crisis range are checked with the classifier; here each command gives the advice.
TEST_F(HostileTextTest, ACrisisReadingGetsAdviceWhenAddedCorrectedOrClassified) {
  const std::string advice = "measure again after a few minutes; if it stays this high, seek medical help";
  EXPECT_THAT(succeed({"classify", "180/80"}), HasSubstr(advice));
  EXPECT_THAT(succeed({"add", "150/120/70"}), HasSubstr(advice));
  EXPECT_THAT(succeed({"add", "179/119/70"}), Not(HasSubstr(advice)));
  const auto id = listed()[0]["id"].get<std::string>();
  EXPECT_THAT(succeed({"edit", id, "--note", "cuff slipped"}), Not(HasSubstr(advice)));
  EXPECT_THAT(succeed({"edit", id, "181/119"}), HasSubstr(advice));
  EXPECT_THAT(succeed({"classify", "120/80/71"}), ::testing::StartsWith("120/80 mmHg, pulse 71: Normal"));
}

}  // namespace
}  // namespace cardiolith::tool::testing
