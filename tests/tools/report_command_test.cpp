#include <algorithm>
#include <regex>
#include <tuple>

#include "tool_test.hpp"

namespace cardiolith::tool::testing {
namespace {

// A week of home readings, in UTC: the first day measures high and is left out; the others have a morning
// and an evening reading, and one reading falls in the afternoon, outside both windows.
class ReportCommandTest : public ToolTest {
 protected:
  ReportCommandTest() {
    const std::pair<const char*, const char*> readings[] = {
        {"160/100/80", "2026-03-02 07:00"}, {"150/96/78", "2026-03-02 20:00"},
        {"140/90/70", "2026-03-03 07:00"},  {"130/80/66", "2026-03-03 20:00"},
        {"136/86/72", "2026-03-04 07:00"},  {"150/95/90", "2026-03-04 14:00"},
        {"128/78/64", "2026-03-04 20:00"},  {"138/88/74", "2026-03-05 07:00"},
        {"126/76/62", "2026-03-05 20:00"}};
    for (const auto& [values, at] : readings) succeed({"add", values, "--at", at});
  }
  Arguments week(const Arguments& more = {}) {
    return joined({"report", "--from", "2026-03-02", "--to", "2026-03-08"}, more);
  }
  // The week's report written as a PDF, as pdftotext reads it, and as an HTML page.
  std::pair<std::string, std::string> printed() {
    const auto pdf = root_ / "report.pdf", html = root_ / "report.html";
    succeed(week({"--format", "pdf", "-o", pdf.string()}));
    succeed(week({"--format", "html", "-o", html.string()}));
    return {pdfText(pdf), readFile(html)};
  }
};

TEST_F(ReportCommandTest, TextGivesTheHomeAverageWithoutTheFirstDayWithin80Columns) {
  const std::string text = succeed(week({"--name", "Anna Example"}));
  for (const auto& expected : {"Home blood pressure, 2 Mar 2026 \u2013 8 Mar 2026, Anna Example",
                               "Home average:  133/83 mmHg (High)", "Threshold:     135/85 mmHg, not reached",
                               "Morning:       138.0/88.0 mmHg", "Evening:       128.0/78.0 mmHg",
                               "Counted:       3 days, 6 readings; 3 with morning and evening",
                               "Mon 2 Mar 2026: morning 160/100; evening 150/96 (first day, left out)",
                               "Wed 4 Mar 2026: morning 136/86; evening 128/78; other 14:00 150/95"})
    EXPECT_THAT(text, HasSubstr(expected));
  EXPECT_THAT(text, Not(HasSubstr("Warning")));
  EXPECT_THAT(text, Not(HasSubstr("Your notes")));
  for (const auto& line : lines(text))
    EXPECT_LE(std::regex_replace(line, std::regex("[\\x80-\\xbf]"), "").size(), 80u) << line;

  // The 2017 scale's threshold is reached; keeping the first day raises the average to 138.5/86.75.
  EXPECT_THAT(succeed(week({"--threshold", "130/80"})), HasSubstr("Threshold:     130/80 mmHg, reached"));
  EXPECT_THAT(succeed(week({"--keep-first-day"})), HasSubstr("Home average:  139/87 mmHg (High)"));
  // Two days: the protocol's warning comes before the days.
  const std::string short_ = succeed({"report", "--from", "2026-03-02", "--to", "2026-03-04"});
  EXPECT_THAT(
      short_,
      MatchesRegex("(.|\n)*Warning: only 2 days have both morning and evening(.|\n)*Mon 2 Mar(.|\n)*"));
}

TEST_F(ReportCommandTest, JsonHoldsEveryFigure) {
  const auto report =
      nlohmann::json::parse(succeed(week({"--json", "--morning", "5-11", "--evening", "19-23"})));
  EXPECT_EQ(report["homeAverage"], (nlohmann::json{{"systolic", 133}, {"diastolic", 83}}));
  EXPECT_EQ(report["category"], "high");
  EXPECT_EQ(report["atOrAboveThreshold"], false);
  EXPECT_EQ(report["protocolMet"], true);
  EXPECT_EQ(report["countedDays"], 3);
  EXPECT_EQ(report["morning"], (nlohmann::json{{"firstHour", 5}, {"endHour", 11}}));
  EXPECT_EQ(report["all"]["readings"], 6);
  EXPECT_NEAR(report["all"]["systolic"]["averageRealVariability"].get<double>(), 9.2, 1e-5);
  EXPECT_EQ(report["morningReadings"]["diastolic"]["mean"], 88);
  EXPECT_EQ(report["days"].size(), 4u);
  EXPECT_EQ(report["days"][0]["leftOut"], true);
  EXPECT_EQ(report["days"][2]["other"][0]["systolic"], 150);
}

TEST_F(ReportCommandTest, PdfKeepsTheFiguresAsTextAndHtmlNamesNothingOutside) {
  const auto [text, page] = printed();
  for (const auto& expected : {"Home average 133/83 mmHg (High)", "Threshold 135/85 mmHg not reached",
                               "138.0", "128.0", "133.0", "Mon 2 Mar 2026 (left out)", "Systolic (mmHg)",
                               "Morning", "Evening", "Other times", "Threshold 135/85", "threshold 85"})
    EXPECT_THAT(text, HasSubstr(expected));

  EXPECT_THAT(page, HasSubstr("<strong>133/83 mmHg</strong>"));
  EXPECT_THAT(page, HasSubstr("<svg"));
  for (const auto& outside : {"http:", "https:", "src=", "<script", "url(", "@import", "<link"})
    EXPECT_THAT(page, Not(HasSubstr(outside))) << outside;
  // The chart's glyphs are used by reference, within the page.
  const std::regex reference("href=\"([^\"]*)\"");
  for (auto it = std::sregex_iterator(page.begin(), page.end(), reference); it != std::sregex_iterator();
       ++it)
    EXPECT_EQ((*it)[1].str().front(), '#') << (*it)[0];
}

// Notes of the period in every form: one with a line break and a control character, markup, and one far
// longer than a line with a word that is too. A note before the period and a blank one are not shown.
// Beyond 20 notes the printed forms say how many more there are and where to find them; JSON has them all.
TEST_F(ReportCommandTest, NotesOfThePeriodAreShownAsPlainTextInEveryFormAtMostTwentyInPrint) {
  std::string longNote;
  for (int i = 0; i < 12; ++i) longNote += "felt fine today ";
  longNote += std::string(100, 'Z');
  const std::tuple<const char*, const char*, std::string> noted[] = {
      {"124/80/60", "2026-03-06 07:00", "dizzy after\nstanding up\x07"},
      {"122/78/61", "2026-03-06 20:00", "<script>alert(1)</script>"},
      {"125/79/62", "2026-03-07 07:00", longNote},
      {"127/77/63", "2026-03-07 20:00", " \n "},
      {"126/76/64", "2026-03-01 20:00", "before the period"}};
  for (const auto& [values, at, note] : noted) succeed({"add", values, "--at", at, "--note", note});
  for (int minute = 10; minute < 32; ++minute) {
    const std::string at = "2026-03-07 08:" + std::to_string(minute);
    succeed({"add", "120/80/60", "--at", at, "--note", "note at " + at});
  }

  const std::string text = succeed(week());
  EXPECT_THAT(text, HasSubstr("Your notes\nFri 6 Mar 2026 07:00, 124/80 mmHg, pulse 60: dizzy after "
                              "standing up\nFri 6 Mar 2026 20:00, 122/78 mmHg, pulse 61: <script>"));
  EXPECT_LT(text.find("Your notes"), text.find("The home average is"));
  EXPECT_EQ(std::count(text.begin(), text.end(), 'Z'), 100);
  for (const auto& line : lines(text)) EXPECT_LE(line.size(), 80u) << line;
  EXPECT_THAT(text, Not(HasSubstr("before the period")));
  EXPECT_THAT(text, HasSubstr("note at 2026-03-07 08:26"));
  EXPECT_THAT(text, Not(HasSubstr("note at 2026-03-07 08:27")));
  const auto more = "5 more notes are not shown; cardiolith list --from 2026-03-02 --to 2026-03-08";
  EXPECT_THAT(text, HasSubstr(more));

  const auto report = nlohmann::json::parse(succeed(week({"--json"})));
  ASSERT_EQ(report["notes"].size(), 25u) << report["notes"];
  EXPECT_EQ(report["notes"][0], nlohmann::json::parse(R"({"date":"2026-03-06T07:00:00Z","systolic":124,)"
                                                      R"("diastolic":80,"pulse":60,)"
                                                      R"("notes":"dizzy after standing up"})"));
  EXPECT_EQ(report["notes"][2]["notes"], longNote);

  const auto [pdf, page] = printed();
  EXPECT_THAT(pdf, HasSubstr("dizzy after standing up"));
  EXPECT_THAT(pdf, HasSubstr("Your notes"));
  EXPECT_THAT(page, HasSubstr("<td class=\"note\">&lt;script&gt;alert(1)&lt;/script&gt;</td>"));
  EXPECT_THAT(page, Not(HasSubstr("<script")));
  EXPECT_THAT(page, HasSubstr(more));
}

}  // namespace
}  // namespace cardiolith::tool::testing
