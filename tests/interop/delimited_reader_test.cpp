#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "cardiolith/interop/delimited.hpp"
#include "cardiolith/platform/civil_time.hpp"
#include "interop/read_all.hpp"
#include "support/scoped_time_zone.hpp"

namespace cardiolith::interop {
namespace {

using cardiolith::testing::ScopedTimeZone;
using testing::readAll;
using testing::readingOf;

// Each table's first row is the same reading, 2025-01-12 08:12 in Berlin, 128/82, pulse 71, written its
// own way; only the notes differ.
struct SpreadsheetCase {
  const char* name;
  std::string text;
  ReaderOptions options;
  std::optional<std::string> notes;
};

class SpreadsheetQuirks : public ::testing::TestWithParam<SpreadsheetCase> {};

TEST_P(SpreadsheetQuirks, ReadsTheFirstRow) {
  const ScopedTimeZone zone("Europe/Berlin");
  const auto& param = GetParam();
  std::istringstream in(param.text);
  auto reader = readDelimited(in, param.options);
  const auto items = readAll(*reader);
  ASSERT_FALSE(items.empty());
  ASSERT_TRUE(std::holds_alternative<IncomingReading>(items[0]))
      << std::get<InvalidRow>(items[0]).position << ": " << std::get<InvalidRow>(items[0]).reason;
  const Reading& reading = readingOf(items[0]);
  EXPECT_EQ(reading.date(), Date::fromTimeIntervalSince1970(1736665920));
  EXPECT_EQ(reading.systolic(), 128);
  EXPECT_EQ(reading.diastolic(), 82);
  EXPECT_EQ(reading.pulse(), 71);
  EXPECT_EQ(reading.notes(), param.notes);
}

INSTANTIATE_TEST_SUITE_P(
    Tables, SpreadsheetQuirks,
    ::testing::Values(
        SpreadsheetCase{
            "MonitorApp",
            "Date,Time,Systolic (mmHg),Diastolic (mmHg),Pulse (bpm),Symptoms,Consumed,TruRead,Notes\r\n"
            "Jan 12 2025,8:12 AM,128,82,71,-,-,Off,\"after coffee, \"\"strong\"\"\"\r\n"
            "Jan 11 2025,9:00 PM,130,85,70,-,-,Off,-\r\n",
            {},
            "after coffee, \"strong\""},
        SpreadsheetCase{"HeartRateComments",
                        "Date,\"Heart rate\",Systolic,Diastolic,Comments\n"
                        "2025-01-12 08:12:00,71,128,82,\n",
                        {},
                        std::nullopt},
        SpreadsheetCase{"SemicolonBomDotted",
                        "\xEF\xBB\xBF"
                        "Datum;Zeit;Oben;Unten;Puls;Notiz\n12.01.2025;08:12;128;82;71;\"zwei\nZeilen\"\n",
                        {.columns = {"date", "time", "systolic", "diastolic", "pulse", "notes"}},
                        "zwei\nZeilen"},
        SpreadsheetCase{"TabsNoHeader",
                        "12.01.2025\t8:12\t128\t82\t71\n",
                        {.columns = {"date", "time", "systolic", "diastolic", "pulse"}},
                        std::nullopt},
        SpreadsheetCase{
            "UnixMilliseconds", "timestampUnixMs,sys,dia,bpm,note\n1736665920000,128,82,71,x\n", {}, "x"},
        SpreadsheetCase{"UnixSeconds", "Timestamp,SYS,DIA,Pulse\n1736665920,128,82,71\n", {}, std::nullopt},
        SpreadsheetCase{"QuotesInsideAnUnquotedCell",
                        "Date,Sys,Dia,Pulse,Notes\n2025-01-12 08:12,128,82,71,=HYPERLINK(\"x\") 8\" cuff\n",
                        {},
                        "=HYPERLINK(\"x\") 8\" cuff"},
        SpreadsheetCase{"SlashesSettledByALaterDay",
                        "Date,Time,Sys,Dia,Pulse\n01/12/2025,08:12,128,82,71\n"
                        "01/13/2025,08:12,128,82,71\n",
                        {},
                        std::nullopt},
        SpreadsheetCase{"DatePattern",
                        "Date,Sys,Dia,Pulse\n2025|12|01 08:12,128,82,71\n",
                        {.dateFormat = "yyyy|dd|MM HH:mm"},
                        std::nullopt},
        SpreadsheetCase{"OffsetKept",
                        "Date and time,Systolic,Diastolic,Pulse\n2025-01-12T07:12:00Z,128,82,71\n",
                        {},
                        std::nullopt}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(DelimitedReader, UnsettledDayOrderAsksForADateFormat) {
  std::istringstream in("Date,Sys,Dia,Pulse\n01/02/2025 08:00,128,82,71\n03/04/2025 08:00,128,82,71\n");
  auto reader = readDelimited(in, {});
  try {
    (void)readAll(*reader);
    FAIL() << "an unsettled day order was guessed";
  } catch (const ImportError& error) {
    EXPECT_NE(std::string(error.what()).find("line 2"), std::string::npos) << error.what();
    EXPECT_NE(std::string(error.what()).find("--date-format"), std::string::npos) << error.what();
  }
}

TEST(DelimitedReader, BadRowsNameTheirLineAndWhatWasFound) {
  std::istringstream in(
      "Date,Sys,Dia,Pulse\n2025-01-12 08:00,128.5,82,71\n2025-13-40 08:00,128,82,71\n"
      "\"2025-01-12 09:00\",128,82,-\n");
  auto reader = readDelimited(in, {});
  const auto items = readAll(*reader);
  ASSERT_EQ(items.size(), 3u);
  const auto& fraction = std::get<InvalidRow>(items[0]);
  EXPECT_EQ(fraction.position, "line 2");
  EXPECT_NE(fraction.reason.find("\"128.5\" is not a whole number"), std::string::npos) << fraction.reason;
  const auto& badDate = std::get<InvalidRow>(items[1]);
  EXPECT_EQ(badDate.position, "line 3");
  EXPECT_NE(badDate.reason.find("2025-13-40"), std::string::npos) << badDate.reason;
  EXPECT_EQ(std::get<SkippedRecord>(items[2]).reason, "no pulse");
}

TEST(DelimitedReader, HeaderWithoutPressuresAsksForTheColumns) {
  std::istringstream in("Datum,Oben,Unten\n2025-01-12,128,82\n");
  try {
    (void)readDelimited(in, {});
    FAIL() << "a header without pressures was read";
  } catch (const ImportError& error) {
    EXPECT_NE(std::string(error.what()).find("--columns date,time,systolic"), std::string::npos)
        << error.what();
  }
}

}  // namespace
}  // namespace cardiolith::interop
