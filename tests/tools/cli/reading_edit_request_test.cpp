#include <gtest/gtest.h>

#include "serve/reading_request.hpp"

namespace cardiolith::tool::serve {
namespace {

TEST(ReadingEditRequestTest, AbsentMembersStayAndAnEmptyNoteRemovesTheNote) {
  const auto page = parseReadingEdit("1a2b3c4d", R"({"systolic":135,"note":""})");
  EXPECT_EQ(page.edit.id, "1a2b3c4d");
  EXPECT_EQ(page.edit.systolic, 135);
  EXPECT_FALSE(page.edit.diastolic || page.edit.pulse || page.edit.date || page.edit.note);
  EXPECT_TRUE(page.edit.removeNote);
  EXPECT_FALSE(page.tags.has_value());
}

TEST(ReadingEditRequestTest, TagsAreTheWholeNewSetEvenWhenEmpty) {
  EXPECT_EQ(parseReadingEdit("1a2b", R"({"tags":[]})").tags, std::vector<std::string>{});
  EXPECT_EQ(parseReadingEdit("1a2b", R"({"tags":["Morning"]})").tags, std::vector<std::string>{"Morning"});
}

TEST(ReadingEditRequestTest, AnEditThatChangesNothingIsRefused) {
  EXPECT_THROW((void)parseReadingEdit("1a2b", "{}"), MalformedRequest);
  EXPECT_THROW((void)parseReadingEdit("1a2b", R"({"force":true,"at":""})"), MalformedRequest);
}

// The undo history names a page's change by the command line that would make it.
TEST(ReadingEditRequestTest, NamesTheChangeAsTheCommandLineWould) {
  const struct {
    std::vector<std::string> command, expected;
  } cases[] = {
      {parseNewReading(R"({"systolic":128,"diastolic":82,"pulse":71,"note":"","tags":["Morning"]})").command,
       {"add", "128/82", "--pulse", "71", "--tag", "Morning"}},
      {parseReadingEdit("1a2b", R"({"pulse":70,"note":"","force":true})").command,
       {"edit", "1a2b", "--pulse", "70", "--no-note", "--force"}},
      {parseReadingEdit("1a2b", R"({"systolic":130,"diastolic":85,"note":"walk"})").command,
       {"edit", "1a2b", "130/85", "--note", "walk"}},
  };
  for (const auto& c : cases) EXPECT_EQ(c.command, c.expected);
}

}  // namespace
}  // namespace cardiolith::tool::serve
