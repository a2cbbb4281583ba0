// Every kind of refusal, one command each: the exit status (1 for a refused request, 2 for a usage error), a
// message on standard error that says why, nothing on standard output, and the log's files as they were.
// The forms each input refuses are unit-tested in cli/ and --out in output_safety_test; one row per command
// and kind of input here proves that the command reaches those checks. Values the argument parser refuses
// are explained like every other error: what is expected, an example.

#include <ostream>

#include "tool_test.hpp"

namespace cardiolith::tool::testing {
namespace {

struct Refusal {
  Arguments arguments;
  int exitCode;
  std::string message;
  bool damaged = false;  // whether the command meets a log and a tag list cut off mid-way
  friend void PrintTo(const Refusal& refusal, std::ostream* out) {
    *out << ::testing::PrintToString(refusal.arguments);
  }
};

// The table can't know the test's folder, so "{data}" stands for it.
std::string expanded(std::string text, const std::filesystem::path& data) {
  for (auto at = text.find("{data}"); at != std::string::npos; at = text.find("{data}", at + 1))
    text.replace(at, 6, data.string());
  return text;
}

// A log of one reading, long ago, and no tag list, read in Berlin's time zone.
class RefusalTest : public ToolTest, public ::testing::WithParamInterface<Refusal> {
 protected:
  RefusalTest() {
    writeFile(readingsFile_,
              GetParam().damaged
                  ? R"({"readings":[{"id":"A","date":1,"systolic":120)"
                  : R"({"readings":[{"id":"old","date":0,"systolic":120,"diastolic":80,"pulse":60}]})");
    if (GetParam().damaged) writeFile(tagsFile_, R"([{"id": broken)");
    environment_["TZ"] = "Europe/Berlin";
  }
};

TEST_P(RefusalTest, ExplainsAndChangesNothing) {
  const std::string log = readFile(readingsFile_), tags = readFile(tagsFile_);
  Arguments arguments;
  for (const auto& argument : GetParam().arguments) arguments.push_back(expanded(argument, data_));
  const auto result = run(arguments);
  EXPECT_EQ(result.exitCode, GetParam().exitCode);
  EXPECT_THAT(result.err, ::testing::StartsWith("cardiolith: "));
  EXPECT_THAT(result.err, HasSubstr(expanded(GetParam().message, data_)));
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(readFile(readingsFile_), log);
  EXPECT_EQ(readFile(tagsFile_), tags);
  EXPECT_EQ(std::filesystem::exists(tagsFile_), GetParam().damaged);
}

const std::string kNotAReading = " is not a blood-pressure reading; write systolic/diastolic";
const std::string kUnreadableLog = "can't read the readings file {data}/readings: invalid JSON";
const std::string kUnreadableTags =
    "can't change the tags while the tags file {data}/tags can't be read; nothing was changed";
const std::string kLeftAsItIs = "\nNothing was changed: the file is left exactly as it is.";
const std::string kAboveEveryRange =
    "not added: the systolic pressure 301 is outside 40-300 mmHg; the diastolic pressure 201 is outside "
    "20-200 mmHg; the pulse 251 is outside 20-250 beats per minute.\nCheck the reading, or add --force";
const std::string kDuplicate =
    "not added: the log already holds this reading, old  2001-01-01 01:00  120/80 mmHg, pulse 60: Normal.\n"
    "Add --force to keep both";
const std::string kUnknownTag =
    "there is no tag \"Moring\"; the tags are: \"After medication\", \"Afternoon\", \"Before medication\",";

INSTANTIATE_TEST_SUITE_P(
    Commands, RefusalTest,
    ::testing::ValuesIn(std::vector<Refusal>{
        {{"add", "128-82", "-p", "70"}, 1, "\"128-82\"" + kNotAReading},
        {{"add", "128/82"}, 1, "the pulse is missing"},
        {{"add", "128/82/70", "-p", "71"}, 1, "the pulse is given twice"},
        {{"add", "301/201", "-p", "251"}, 1, kAboveEveryRange},
        {{"add", "120/80", "-p", "70", "--at", "2099-01-01 8:00"}, 1, "is in the future"},
        {{"add", "120/80/60", "--at", "2001-01-01 1:00"}, 1, kDuplicate},
        {{"add", "120/80", "-p", "0x47"},
         2,
         "--pulse takes a whole number of beats per minute, e.g. --pulse 71 (\"0x47\" is not a whole "
         "number)\n"},
        {{"add", "120/80", "--pulse"},
         2,
         "--pulse needs a value: a whole number of beats per minute, e.g. --pulse 71"},
        {{"add"}, 2, "cardiolith add needs the reading: Systolic/diastolic in mmHg (128/82)"},
        {{"edit", "oldy", "130/80"}, 1, "no reading has an id starting with \"oldy\""},
        {{"edit", "ol", "130/80"}, 1, "\"ol\" is too short for an id"},
        {{"edit", "old"}, 1, "nothing to change; give new values"},
        {{"edit", "old", "301/80"}, 1, "not changed: the systolic pressure 301"},
        {{"edit", "old", "--at", "yesterday"}, 1, "\"yesterday\" is a day without a time"},
        {{"delete", "old", "nope"}, 1, "no reading has an id starting with \"nope\""},
        {{"undo"}, 1, "there is nothing to undo"},
        {{"list", "--tag", "Moring"}, 1, kUnknownTag},
        {{"add", "120/80/70", "--tag", "Moring"}, 1, kUnknownTag},
        {{"list", "--from", "yesterdy"}, 1, "--from: \"yesterdy\" is not a date"},
        {{"list", "--last", "7x"}, 1, "--last: \"7x\" is not a span of days"},
        {{"list", "--from", "2026-11-20", "--to", "2026-11-19"}, 1, "the range ends before it starts"},
        {{"list", "--bogus"},
         2,
         "cardiolith list has no option --bogus; it takes --from, --to, --last, --tag, --reverse, --wide or "
         "--json\nSee cardiolith list --help for what it takes."},
        {{"list", "--last", "7d", "--from", "2026-11-01"}, 2, "give --from or --last, not both"},
        {{"summary", "--days", "0"}, 2, "--days"},
        {{"summary", "--to", "2026-03-08"}, 1, "--to needs --from"},
        {{"summary", "--days", "7", "--from", "2026-03-01"}, 2, "give --days or --from, not both"},
        {{"summary", "--from", "9999-01-01"},
         1,
         "--from: 9999-01-01 is in the future, and the period runs from it to now; give a day before today"},
        {{"chart", "--from", "9999-01-01", "--out", "-"}, 1, "--from: 9999-01-01 is in the future"},
        {{"report", "--from", "9999-01-01"}, 1, "--from: 9999-01-01 is in the future"},
        {{"classify", "135/95/70/1"}, 1, kNotAReading},
        {{"classify", "120/80", "extra"},
         2,
         "cardiolith classify takes nothing more; \"extra\" was not expected"},
        {{"chart", "--days", "9999", "--out", "{data}/./readings"}, 1, "end it in .svg, .png or .pdf"},
        {{"chart"}, 2, "cardiolith chart needs --out: The picture to write"},
        {{"export", "--format", "xls"},
         2,
         "--format takes csv, tsv, json or fhir, e.g. cardiolith export --format csv"},
        {{"export", "--out", ""}, 1, "--out: the file name is empty; name a file"},
        {{"export", "--out", "{data}/no/x.csv"},
         1,
         "couldn't write {data}/no/x.csv: there is no folder {data}/no"},
        {{"export", "--out", "{data}"}, 1, "couldn't write {data}: {data} is a folder"},
        {{"report", "--threshold", "13080"}, 1, "--threshold: \"13080\" is not a"},
        {{"report", "--format", "doc"}, 2, "--format takes text, html or pdf"},
        {{"report", "--to", "2026-11-20"}, 2, "--to needs --from as well"},
        {{"report", "--morning", "12-4"}, 1, "--morning: \"12-4\" is not a span of hours"},
        {{"report", "--evening", "18-25"}, 1, "--evening: \"18-25\" is not a span of hours"},
        {{"report", "--morning", "4-12", "--evening", "11-20"}, 1, "overlap"},
        {{"chart", "--out", "{data}/chart.svg"}, 1, "no readings in that period ("},
        {{"sample"}, 1, "already holds 1 reading, and sample readings would mix"},
        {{"sample", "--count", "0"},
         2,
         "--count takes a whole number of readings from 1 to 100000, e.g. --count 30"},
        {{"sample", "--variance", "0"}, 2, "--variance"},
        {{"tags", "add", "MORNING"}, 1, "there is already a tag \"Morning\""},
        // Tag titles that would not show as typed, one row per check: which texts are blank or unprintable is
        // the text functions' own test.
        {{"tags", "add", "  "}, 1, "a tag needs a title that shows something"},
        {{"tags", "add", "two\nlines"}, 1, "can't hold line breaks"},
        {{"tags", "add", std::string(101, 'x')}, 1, "has 101 characters; at most 100"},
        {{"tags", "rename", "Morning", "two\nlines"}, 1, "can't hold line breaks"},
        {{"tags", "add", "Walk", "--color", "abc"}, 1, "--color: \"abc\" is not a colour"},
        {{"tags", "add", "Walk", "--color", "12345g"}, 1, "is not a colour"},
        {{"tags", "rename", "Morning", "Evening"}, 1, "already a tag \"Evening\""},
        {{"tags", "rename", "Lunch", "Tea"}, 1, "no tag \"Lunch\"; the tags are: "},
        {{"tags", "delete", "Breakfast"}, 1, "there is no tag \"Breakfast\""},
        {{"tags", "frob"},
         2,
         "cardiolith tags has no command \"frob\"; it takes list, add, rename or delete"},
        {{"frobnicate"}, 2, "cardiolith has no command \"frobnicate\"; it takes version, add, edit,"},
        {{"completion", "tcsh"}, 2, "the shell takes bash, zsh or fish, e.g. cardiolith completion bash"},
        // A damaged file is named, and a command that would change the log says that it didn't.
        {{"list"}, 1, kUnreadableLog, true},
        {{"chart", "--out", "{data}/chart.svg"}, 1, kUnreadableLog, true},
        {{"add", "120/80/60"}, 1, kLeftAsItIs, true},
        {{"sample", "--force"}, 1, kLeftAsItIs, true},
        {{"tags", "add", "Walk"}, 1, kUnreadableTags, true}}));

}  // namespace
}  // namespace cardiolith::tool::testing
