// The page's requests to add or edit a reading, read from their JSON bodies.

#include "serve/reading_request.hpp"

#include <gtest/gtest.h>

#include "tool_error.hpp"

namespace cardiolith::tool::serve {
namespace {

TEST(ReadingRequestTest, ReadsEveryMember) {
  const auto reading =
      parseNewReading(R"({"systolic":128,"diastolic":82,"pulse":71,"at":"2026-11-20 07:45","note":"a <b>",)"
                      R"("tags":["Morning","Sitting"],"force":true})")
          .reading;
  EXPECT_EQ(reading.systolic, 128);
  EXPECT_EQ(reading.diastolic, 82);
  EXPECT_EQ(reading.pulse, 71);
  ASSERT_TRUE(reading.date.has_value());
  EXPECT_EQ(reading.note, "a <b>");
  EXPECT_EQ(reading.tags, (std::vector<std::string>{"Morning", "Sitting"}));
  EXPECT_TRUE(reading.force);
}

TEST(ReadingRequestTest, EmptyDateAndNoteMeanNowAndNone) {
  const auto reading =
      parseNewReading(R"({"systolic":120,"diastolic":80,"pulse":60,"at":"","note":""})").reading;
  EXPECT_FALSE(reading.date.has_value());
  EXPECT_FALSE(reading.note.has_value());
}

TEST(ReadingRequestTest, RefusesMalformedBodiesNamingTheMember) {
  const struct {
    const char* body;
    const char* mentioned;
  } cases[] = {
      {"", "body"},
      {"[1,2]", "body"},
      {R"({"systolic":128,"diastolic":82,"pulse":71} x)", "body"},
      {R"({"systolic":"128","diastolic":82,"pulse":71})", "systolic"},
      {R"({"systolic":128.5,"diastolic":82,"pulse":71})", "systolic"},
      {R"({"systolic":128,"diastolic":82})", "pulse"},
      {R"({"systolic":128,"diastolic":82,"pulse":71,"tags":"Morning"})", "tags"},
      {R"({"systolic":128,"diastolic":82,"pulse":71,"force":1})", "force"},
      {R"({"systolic":128,"diastolic":82,"pulse":71,"notes":"x"})", "notes"},
  };
  for (const auto& c : cases) {
    try {
      (void)parseNewReading(c.body);
      ADD_FAILURE() << "accepted " << c.body;
    } catch (const MalformedRequest& error) {
      EXPECT_NE(std::string(error.what()).find(c.mentioned), std::string::npos)
          << c.body << ": " << error.what();
    }
  }
}

// A date that is no date, or one in the future without "force", is the tool's own refusal, as on the
// command line; "force" counts even when it comes after the date.
TEST(ReadingRequestTest, AMalformedOrFutureDateIsTheToolsOwnRefusalUnlessForced) {
  for (const std::string at : {"yesterday-ish", "2100-01-01 08:00"}) {
    const auto body = R"({"systolic":120,"diastolic":80,"pulse":60,"at":")" + at + "\"}";
    EXPECT_THROW((void)parseNewReading(body), ToolError) << at;
  }
  const auto forced =
      parseNewReading(R"({"systolic":120,"diastolic":80,"pulse":60,"at":"2100-01-01 08:00","force":true})");
  EXPECT_TRUE(forced.reading.date.has_value());
}

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
