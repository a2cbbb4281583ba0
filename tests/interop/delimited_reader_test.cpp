#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "cardiolith/interop/delimited.hpp"
#include "interop/read_all.hpp"
#include "support/scoped_time_zone.hpp"

namespace cardiolith::interop {
namespace {

using cardiolith::testing::ScopedTimeZone;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Property;
using testing::readAll;
using testing::readingOf;
using ::testing::Throws;

// Each table's first row is the same reading, 2025-01-12 08:12 in Berlin, 128/82, pulse 71, written its
// own way; only the notes differ.
TEST(DelimitedReader, ReadsTheFirstRowOfEachSpreadsheetsQuirks) {
  const ScopedTimeZone zone("Europe/Berlin");
  const struct {
    const char* name;
    std::string text;
    ReaderOptions options;
    std::optional<std::string> notes;
  } cases[] = {
      {"MonitorApp",
       "Date,Time,Systolic (mmHg),Diastolic (mmHg),Pulse (bpm),Symptoms,Consumed,TruRead,Notes\r\n"
       "Jan 12 2025,8:12 AM,128,82,71,-,-,Off,\"after coffee, \"\"strong\"\"\"\r\n"
       "Jan 11 2025,9:00 PM,130,85,70,-,-,Off,-\r\n",
       {},
       "after coffee, \"strong\""},
      {"HeartRateComments",
       "Date,\"Heart rate\",Systolic,Diastolic,Comments\n"
       "2025-01-12 08:12:00,71,128,82,\n",
       {},
       std::nullopt},
      {"SemicolonBomDotted",
       "\xEF\xBB\xBF"
       "Datum;Zeit;Oben;Unten;Puls;Notiz\n12.01.2025;08:12;128;82;71;\"zwei\nZeilen\"\n",
       {.columns = {"date", "time", "systolic", "diastolic", "pulse", "notes"}},
       "zwei\nZeilen"},
      {"TabsNoHeader",
       "12.01.2025\t8:12\t128\t82\t71\n",
       {.columns = {"date", "time", "systolic", "diastolic", "pulse"}},
       std::nullopt},
      {"UnixMilliseconds", "timestampUnixMs,sys,dia,bpm,note\n1736665920000,128,82,71,x\n", {}, "x"},
      {"UnixSeconds", "Timestamp,SYS,DIA,Pulse\n1736665920,128,82,71\n", {}, std::nullopt},
      {"QuotesInsideAnUnquotedCell",
       "Date,Sys,Dia,Pulse,Notes\n2025-01-12 08:12,128,82,71,=HYPERLINK(\"x\") 8\" cuff\n",
       {},
       "=HYPERLINK(\"x\") 8\" cuff"},
      {"SlashesSettledByALaterDay",
       "Date,Time,Sys,Dia,Pulse\n01/12/2025,08:12,128,82,71\n"
       "01/13/2025,08:12,128,82,71\n",
       {},
       std::nullopt},
      {"DatePattern",
       "Date,Sys,Dia,Pulse\n2025|12|01 08:12,128,82,71\n",
       {.dateFormat = "yyyy|dd|MM HH:mm"},
       std::nullopt},
      {"OffsetKept",
       "Date and time,Systolic,Diastolic,Pulse\n2025-01-12T07:12:00Z,128,82,71\n",
       {},
       std::nullopt},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.name);
    std::istringstream in(test.text);
    const auto items = readAll(*readDelimited(in, test.options));
    ASSERT_FALSE(items.empty());
    ASSERT_TRUE(std::holds_alternative<IncomingReading>(items[0]))
        << std::get<InvalidRow>(items[0]).position << ": " << std::get<InvalidRow>(items[0]).reason;
    const Reading& reading = readingOf(items[0]);
    EXPECT_EQ(reading.date(), Date::fromTimeIntervalSince1970(1736665920));
    EXPECT_EQ(reading.systolic(), 128);
    EXPECT_EQ(reading.diastolic(), 82);
    EXPECT_EQ(reading.pulse(), 71);
    EXPECT_EQ(reading.notes(), test.notes);
  }
}

// A fault of the whole table stops the reading, and says where and which option settles it.
TEST(DelimitedReader, TablesThatCannotBeReadAskForAnOption) {
  const struct {
    std::string text;
    const char *where, *option;
  } cases[] = {
      {"Date,Sys,Dia,Pulse\n01/02/2025 08:00,128,82,71\n03/04/2025 08:00,128,82,71\n", "line 2: the date",
       "--date-format dd/MM/yyyy"},
      {"Datum,Oben,Unten\n2025-01-12,128,82\n", "the header \"Datum,Oben,Unten\"",
       "--columns date,time,systolic"},
  };
  for (const auto& [text, where, option] : cases) {
    std::istringstream in(text);
    EXPECT_THAT([&] { (void)readAll(*readDelimited(in, {})); },
                Throws<ImportError>(Property(&ImportError::what, AllOf(HasSubstr(where), HasSubstr(option)))))
        << text;
  }
}

// Roles are checked before any file is read: spaces and case do not matter, a name that is no role or a
// set without a date and both pressures is refused.
TEST(DelimitedReader, ColumnRolesAreCheckedBeforeReading) {
  EXPECT_NO_THROW(checkColumns({"timestamp", "skip", " SYS ", "diastolic", "pulse"}));
  const struct {
    std::vector<std::string> columns;
    const char* message;
  } refused[] = {
      {{"date", "oben", "diastolic"}, "--columns: \"oben\" is not a role"},
      {{"date", "time", "systolic", "pulse"}, "--columns names no date, systolic and diastolic column"},
      {{"time", "systolic", "diastolic"}, "--columns names no date"},
  };
  for (const auto& row : refused)
    EXPECT_THAT([&] { checkColumns(row.columns); },
                Throws<ImportError>(Property(&ImportError::what, HasSubstr(row.message))))
        << row.message;
}

TEST(DelimitedReader, BadRowsNameTheirLineAndWhatWasFound) {
  std::istringstream in(
      "Date,Sys,Dia,Pulse\n2025-01-12 08:00,128.5,82,71\n2025-13-40 08:00,128,82,71\n"
      "\"2025-01-12 09:00\",128,82,-\n");
  const auto items = readAll(*readDelimited(in, {}));
  ASSERT_EQ(items.size(), 3u);
  EXPECT_EQ(std::get<InvalidRow>(items[0]).position, "line 2");
  EXPECT_THAT(std::get<InvalidRow>(items[0]).reason, HasSubstr("\"128.5\" is not a whole number"));
  EXPECT_EQ(std::get<InvalidRow>(items[1]).position, "line 3");
  EXPECT_THAT(std::get<InvalidRow>(items[1]).reason, HasSubstr("2025-13-40"));
  EXPECT_EQ(std::get<SkippedRecord>(items[2]).reason, "no pulse");
}

// With a date format given, a date that misses it is blamed on the format, not on the date's form.
TEST(DelimitedReader, ADateThatMissesTheGivenFormatNamesTheFormat) {
  std::istringstream in("Date,Sys,Dia\n2025-01-12 08:00,128,82\n");
  const auto items = readAll(*readDelimited(in, {.dateFormat = "dd.MM.yyyy HH:mm"}));
  ASSERT_EQ(items.size(), 1u);
  EXPECT_THAT(std::get<InvalidRow>(items[0]).reason,
              HasSubstr("\"2025-01-12 08:00\" does not match --date-format \"dd.MM.yyyy HH:mm\""));
}

}  // namespace
}  // namespace cardiolith::interop
