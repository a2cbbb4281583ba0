#include "cardiolith/interop/health_export.hpp"

#include <gtest/gtest.h>
#include <zip.h>

#include <filesystem>
#include <sstream>

#include "cardiolith/interop/import_file.hpp"
#include "interop/read_all.hpp"

namespace cardiolith::interop {
namespace {

using testing::readAll;

std::string record(const char* type, const char* date, const char* value, const char* unit) {
  return std::string("<Record type=\"") + type + "\" sourceName=\"Phone\" unit=\"" + unit +
         "\" startDate=\"" + date + "\" endDate=\"" + date + "\" value=\"" + value + "\"/>\n";
}

std::string pressure(const char* date, const char* systolic, const char* diastolic) {
  return record("HKQuantityTypeIdentifierBloodPressureSystolic", date, systolic, "mmHg") +
         record("HKQuantityTypeIdentifierBloodPressureDiastolic", date, diastolic, "mmHg");
}

std::string correlation(const char* date, const char* systolic, const char* diastolic) {
  return std::string("<Correlation type=\"HKCorrelationTypeIdentifierBloodPressure\" startDate=\"") + date +
         "\" endDate=\"" + date + "\">\n<MetadataEntry key=\"k\" value=\"v\"/>\n" +
         pressure(date, systolic, diastolic) + "</Correlation>\n";
}

std::string healthExport(const std::string& body) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
         "<!DOCTYPE HealthData [\n<!ELEMENT HealthData (ExportDate?,Record*,Correlation*)>\n"
         "<!ATTLIST HealthData locale CDATA #REQUIRED>\n]>\n"
         "<HealthData locale=\"en_US\">\n" +
         body + "</HealthData>\n";
}

// Pressures repeated outside their Correlation, a heart rate 3 minutes off and one 4 minutes off the
// other way (the closer one counts), a reading with no heart rate in 5 minutes, another kind of record.
const std::string kExport = healthExport(
    pressure("2025-01-12 08:12:00 +0100", "128", "82") + pressure("2025-01-12 20:00:00 +0100", "120", "80") +
    record("HKQuantityTypeIdentifierHeartRate", "2025-01-12 08:15:00 +0100", "71", "count/min") +
    record("HKQuantityTypeIdentifierHeartRate", "2025-01-12 08:08:00 +0100", "90", "count/min") +
    record("HKQuantityTypeIdentifierHeartRate", "2025-01-12 20:06:00 +0100", "60", "count/min") +
    record("HKQuantityTypeIdentifierStepCount", "2025-01-12 08:12:00 +0100", "100", "count") +
    correlation("2025-01-12 08:12:00 +0100", "128", "82") +
    correlation("2025-01-12 20:00:00 +0100", "120", "80"));

TEST(HealthExport, ReadsCorrelationsOnceAndTheClosestHeartRate) {
  std::istringstream in(kExport);
  const auto items = readAll(*readHealthExport(in, {}));
  ASSERT_EQ(items.size(), 2u);
  const Reading& reading = testing::readingOf(items[0]);
  EXPECT_EQ(reading.date(), Date::fromTimeIntervalSince1970(1736665920));
  EXPECT_EQ(reading.systolic(), 128);
  EXPECT_EQ(reading.diastolic(), 82);
  EXPECT_EQ(reading.pulse(), 71);
  EXPECT_EQ(std::get<SkippedRecord>(items[1]).reason, "no pulse within 5 minutes");
  EXPECT_EQ(std::get<SkippedRecord>(items[1]).position, "Correlation[1] (line 20)");
}

// What the reader makes of the export is the test above's; here, that the archive reaches it.
TEST(HealthExport, ReadsExportXmlInsideAZipWithoutUnpacking) {
  const auto path = std::filesystem::temp_directory_path() / "cardiolith-health-export-test.zip";
  int error = 0;
  zip_t* archive = zip_open(path.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &error);
  ASSERT_NE(archive, nullptr);
  zip_source_t* source = zip_source_buffer(archive, kExport.data(), kExport.size(), 0);
  ASSERT_GE(zip_file_add(archive, "health/export.xml", source, ZIP_FL_ENC_UTF_8), 0);
  ASSERT_EQ(zip_close(archive), 0);
  {
    ImportFile file(path, std::nullopt, {});
    EXPECT_EQ(file.format(), ImportFormat::healthExport);
    EXPECT_EQ(file.size(), kExport.size());
    EXPECT_EQ(testing::readingOf(readAll(file.reader()).at(0)).pulse(), 71);
  }
  std::filesystem::remove(path);
}

TEST(HealthExport, RefusesBadValuesAndBrokenXml) {
  std::istringstream bad(healthExport(correlation("2025-01-12 08:12:00 +0100", "128.5", "82")));
  const auto items = readAll(*readHealthExport(bad, {}));
  ASSERT_EQ(items.size(), 1u);
  EXPECT_NE(std::get<InvalidRow>(items[0]).reason.find("\"128.5\""), std::string::npos);

  std::istringstream broken(healthExport("<Record type=\"x\">"));
  auto reader = readHealthExport(broken, {});
  EXPECT_THROW((void)readAll(*reader), ImportError);
}

TEST(HealthExport, NeverLoadsExternalEntities) {
  std::istringstream in(
      "<?xml version=\"1.0\"?>\n<!DOCTYPE HealthData [\n<!ENTITY secret SYSTEM \"/etc/passwd\">\n]>\n"
      "<HealthData>&secret;</HealthData>\n");
  auto reader = readHealthExport(in, {});
  EXPECT_TRUE(readAll(*reader).empty());
}

TEST(ImportFormat, FoundFromTheFirstBytes) {
  EXPECT_EQ(detectImportFormat("PK\x03\x04rest"), ImportFormat::healthExport);
  EXPECT_EQ(detectImportFormat("\xEF\xBB\xBF<?xml"), ImportFormat::healthExport);
  EXPECT_EQ(detectImportFormat(" {\"resourceType\":\"Bundle\"}"), ImportFormat::fhir);
  EXPECT_EQ(detectImportFormat("{\"readings\":[]}"), ImportFormat::document);
  EXPECT_EQ(detectImportFormat("Date;Sys;Dia\n"), ImportFormat::table);
}

}  // namespace
}  // namespace cardiolith::interop
