#include "cardiolith/storage/readings_store.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "storage_test_support.hpp"

namespace cardiolith::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class ReadingsStoreTest : public StorageTest {
 protected:
  fs::path sharedFile() const { return container() / "readings"; }
  fs::path legacyFile() const { return documents() / "readings"; }
};

TEST_F(ReadingsStoreTest, FirstLaunchReportsTheMissingFileAndTheFirstSaveCreatesTheSharedFile) {
  ReadingsStore store(locations());
  EXPECT_THAT(logs(), IsEmpty());
  EXPECT_TRUE(analytics_->failures().empty());
  EXPECT_EQ(store.localDataPath(), sharedFile());
  EXPECT_FALSE(fs::exists(sharedFile()));

  EXPECT_TRUE(store.load().get().readings.empty());
  const auto errors = messages(LogLevel::error);
  ASSERT_EQ(errors.size(), 1U);
  EXPECT_THAT(errors[0], StartsWith("Unable to load readings: "));
  EXPECT_THAT(errors[0], HasSubstr("No such file or directory"));
  EXPECT_FALSE(fs::exists(sharedFile()));  // a load never writes

  store.save(sampleReadings(1)).get();
  EXPECT_EQ(fileContent(sharedFile()), json::encode(sampleReadings(1)));
}

TEST_F(ReadingsStoreTest, SavedReadingsLoadBackEqualAndTheFileIsExactlyTheEncodedDocument) {
  for (const bool durable : {false, true}) {
    SCOPED_TRACE(durable ? "durable" : "plain");
    ReadingsStore store(locations(), StorageOptions{.durable = durable});
    for (const int count : {0, 1, 25}) {
      const auto saved = sampleReadings(count, count);
      store.save(saved).get();
      EXPECT_EQ(fileContent(sharedFile()), json::encode(saved));
      EXPECT_TRUE(sameReadings(store.load().get(), saved));
    }
    EXPECT_THAT(messages(LogLevel::error), IsEmpty());
  }
}

TEST_F(ReadingsStoreTest, MalformedFileLoadsAsEmptyWithAnErrorAndIsLeftUntilTheNextSave) {
  writeFile(sharedFile(), R"({"readings":[{"id":"x"}]})");
  ReadingsStore store(locations());
  EXPECT_TRUE(store.load().get().readings.empty());
  const auto errors = messages(LogLevel::error);
  ASSERT_EQ(errors.size(), 1U);
  EXPECT_THAT(errors[0], StartsWith("Unable to load readings: "));
  EXPECT_THAT(errors[0], HasSubstr("readings[0]"));  // the decoder's description names the member
  EXPECT_EQ(fileContent(sharedFile()), R"({"readings":[{"id":"x"}]})");

  store.save(sampleReadings(2)).get();
  EXPECT_TRUE(sameReadings(store.load().get(), sampleReadings(2)));
}

TEST_F(ReadingsStoreTest, EncodingFailureIsThrownAndLeavesTheFileUntouched) {
  ReadingsStore store(locations());
  store.save(sampleReadings(1)).get();
  Readings unencodable = sampleReadings(2);
  unencodable.readings.push_back(
      std::make_shared<Reading>("nan", Date(std::numeric_limits<double>::quiet_NaN()), 120, 80, 60,
                                std::nullopt, std::nullopt, std::nullopt));
  EXPECT_THROW(store.save(unencodable).get(), EncodingError);
  EXPECT_EQ(fileContent(sharedFile()), json::encode(sampleReadings(1)));
  EXPECT_THAT(logs(), IsEmpty());  // reporting a failed save is the caller's business
}

TEST_F(ReadingsStoreTest, LoadExistingTreatsOnlyAMissingFileAsEmpty) {
  ReadingsStore store(locations());
  EXPECT_TRUE(store.loadExisting().get().readings.empty());
  writeFile(sharedFile(), "{\"readings\":");
  EXPECT_THROW(store.loadExisting().get(), DecodingError);
  store.save(sampleReadings(4)).get();
  EXPECT_TRUE(sameReadings(store.loadExisting().get(), sampleReadings(4)));
  EXPECT_THAT(logs(), IsEmpty());
}

TEST_F(ReadingsStoreTest, OldFileMovesIntoTheSharedContainer) {
  writeFile(legacyFile(), json::encode(sampleReadings(7)));
  ReadingsStore store(locations());

  EXPECT_EQ(store.localDataPath(), sharedFile());
  EXPECT_FALSE(fs::exists(legacyFile()));
  EXPECT_EQ(fileContent(sharedFile()), json::encode(sampleReadings(7)));
  EXPECT_THAT(logs(), ElementsAre(CapturedLog{LogLevel::debug, "Data migrated to shared group"}));
  EXPECT_TRUE(analytics_->failures().empty());
  EXPECT_TRUE(sameReadings(store.load().get(), sampleReadings(7)));
}

TEST_F(ReadingsStoreTest, FailedMoveIsReportedAndTheStoreKeepsWorkingOnTheOldFile) {
  writeFile(legacyFile(), json::encode(sampleReadings(1)));
  writeFile(sharedFile(), json::encode(sampleReadings(2)));
  ReadingsStore store(locations());

  const auto failures = analytics_->failures();
  ASSERT_EQ(failures.size(), 1U);
  ASSERT_TRUE(failures[0].message.has_value());
  EXPECT_THAT(*failures[0].message, StartsWith("Failed to migrate data with error: "));
  EXPECT_THAT(*failures[0].message, HasSubstr("File exists"));
  EXPECT_THAT(*failures[0].message, HasSubstr(legacyFile().string()));
  EXPECT_THAT(*failures[0].message, HasSubstr(sharedFile().string()));
  EXPECT_EQ(failures[0].function, "init()");
  EXPECT_THAT(failures[0].file, ::testing::EndsWith("readings_store.cpp"));
  EXPECT_GT(failures[0].line, 0);
  EXPECT_THAT(logs(), IsEmpty());

  EXPECT_EQ(store.localDataPath(), legacyFile());
  EXPECT_TRUE(sameReadings(store.load().get(), sampleReadings(1)));
  store.save(sampleReadings(3)).get();
  EXPECT_EQ(fileContent(legacyFile()), json::encode(sampleReadings(3)));
  EXPECT_EQ(fileContent(sharedFile()), json::encode(sampleReadings(2)));  // never read, never replaced
}

TEST_F(ReadingsStoreTest, DeleteAllRecordsRemovesTheMigratedFileAndNothingElse) {
  writeFile(legacyFile(), json::encode(sampleReadings(1)));
  writeFile(container() / "tags", "[]");
  ProcessInfo::setArguments({"app", "-flag", "DELETE_ALL_RECORDS"});
  ReadingsStore store(locations());

  EXPECT_FALSE(fs::exists(legacyFile()));
  EXPECT_FALSE(fs::exists(sharedFile()));
  EXPECT_EQ(fileContent(container() / "tags"), "[]");
  EXPECT_THAT(messages(LogLevel::debug), ElementsAre("Data migrated to shared group"));
  EXPECT_TRUE(store.load().get().readings.empty());
}

TEST_F(ReadingsStoreTest, DeleteAllRecordsWithNoFileReportsNothing) {
  ProcessInfo::setArguments({"app", "DELETE_ALL_RECORDS"});
  ReadingsStore store(locations());
  EXPECT_THAT(logs(), IsEmpty());
  EXPECT_TRUE(analytics_->failures().empty());
}

TEST_F(ReadingsStoreTest, OnlyTheExactWholeArgumentDeletes) {
  for (const char* nearMiss : {"-DELETE_ALL_RECORDS", "delete_all_records", "Delete_All_Records",
                               "DELETE_ALL_RECORDS ", " DELETE_ALL_RECORDS", "DELETE_ALL_RECORDSX",
                               "DELETE_ALL_RECORDS=1", "DELETE_ALL", "--DELETE_ALL_RECORDS"}) {
    SCOPED_TRACE(nearMiss);
    writeFile(sharedFile(), json::encode(sampleReadings(1)));
    ProcessInfo::setArguments({"app", nearMiss});
    ReadingsStore store(locations());
    EXPECT_TRUE(sameReadings(store.load().get(), sampleReadings(1)));
  }
}

using ReadingsStoreDeathTest = ReadingsStoreTest;

TEST_F(ReadingsStoreDeathTest, MissingFoldersStopTheProcess) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(ReadingsStore(StorageLocations{std::nullopt, {documents()}}),
               "Can't find documents directory");
  EXPECT_DEATH(ReadingsStore(StorageLocations{container(), {}}), "Can't find documents directory");
}

}  // namespace
}  // namespace cardiolith::testing
