#include "cardiolith/storage/readings_store.hpp"

#include <atomic>
#include <cmath>
#include <future>
#include <set>

#include "storage/tags_store.hpp"
#include "storage_test_support.hpp"

namespace cardiolith::testing {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

using ReadingsStoreTest = StorageTest;

// The first launch loads nothing, logged, and writes nothing; every save then replaces the whole file,
// a shorter document included, and loads back equal. A document in another shape than the one saved is
// not read a window at a time, but whole.
TEST_F(ReadingsStoreTest, SavedDocumentsLoadBackWholeInBothWriteModes) {
  for (const bool durable : {false, true}) {
    SCOPED_TRACE(durable ? "durable" : "plain");
    fs::remove(readingsFile());
    clearLogs();
    ReadingsStore store(locations(), StorageOptions{.durable = durable});
    EXPECT_TRUE(store.load().get().readings.empty());
    EXPECT_TRUE(store.loadExisting().get().readings.empty());  // silently: only a missing file is empty
    EXPECT_THAT(logs(), ElementsAre(AllOf(StartsWith("error: Unable to load readings: "),
                                          HasSubstr("No such file or directory"))));
    EXPECT_FALSE(fs::exists(readingsFile()));
    writeWholeFile(readingsFile(), R"({"other":1,)" + json::encode(sampleReadings(4)).substr(1));
    EXPECT_EQ(json::encode(store.loadExisting().get()), json::encode(sampleReadings(4)));
    for (const int count : {25, 1}) {
      store.save(sampleReadings(count, count)).get();
      EXPECT_EQ(readWholeFile(readingsFile()), json::encode(sampleReadings(count, count)));
      EXPECT_EQ(json::encode(store.load().get()), json::encode(sampleReadings(count, count)));
    }
    // A document that can't be encoded is refused before the file is touched.
    Readings unencodable = sampleReadings(2);
    unencodable.readings[0] =
        std::make_shared<Reading>("nan", Date(NAN), 1, 2, 3, "", std::nullopt, std::nullopt);
    EXPECT_THROW(store.save(unencodable).get(), EncodingError);
    EXPECT_EQ(readWholeFile(readingsFile()), json::encode(sampleReadings(1, 1)));
    EXPECT_EQ(logs().size(), 1U);
  }
}

// An old installation's file moves into the shared container; then only the exact, whole launch argument
// "DELETE_ALL_RECORDS", wherever it stands, deletes it, and nothing else.
TEST_F(ReadingsStoreTest, OldFileMovesIntoTheContainerAndOnlyTheExactArgumentDeletesIt) {
  const fs::path legacyFile = documents() / "readings";
  writeWholeFile(tagsFile(), "[]");
  for (const std::string argument : {"DELETE_ALL_RECORDS", "-DELETE_ALL_RECORDS", "Delete_All_Records",
                                     " DELETE_ALL_RECORDS ", "DELETE_ALL_RECORDS=1", "DELETE_ALL"}) {
    SCOPED_TRACE(argument);
    fs::remove(readingsFile());
    writeWholeFile(legacyFile, json::encode(sampleReadings(7)));
    clearLogs();
    ProcessInfo::setArguments({"app", "-flag", argument});
    ReadingsStore store(locations());
    EXPECT_EQ(store.localDataPath(), readingsFile());
    EXPECT_FALSE(store.keptOldFile());
    EXPECT_FALSE(fs::exists(legacyFile));
    EXPECT_THAT(logs(), ElementsAre("debug: Data migrated to shared group"));
    const bool deletes = argument == "DELETE_ALL_RECORDS";
    EXPECT_EQ(fs::exists(readingsFile()), !deletes);
    EXPECT_EQ(json::encode(store.loadExisting().get()),
              json::encode(deletes ? Readings{} : sampleReadings(7)));
  }
  EXPECT_EQ(readWholeFile(tagsFile()), "[]");
  EXPECT_THAT(analytics_->failures, IsEmpty());
}

TEST_F(ReadingsStoreTest, FailedMoveIsReportedAndTheStoreKeepsWorkingOnTheOldFile) {
  const fs::path legacyFile = documents() / "readings";
  writeWholeFile(legacyFile, json::encode(sampleReadings(1)));
  writeWholeFile(readingsFile(), json::encode(sampleReadings(2)));
  ReadingsStore store(locations());
  EXPECT_THAT(analytics_->failures,
              ElementsAre(AllOf(StartsWith("readings_store.cpp init(): Failed to migrate data with error: "),
                                HasSubstr("File exists"), HasSubstr(legacyFile.string()),
                                HasSubstr(readingsFile().string()))));
  EXPECT_THAT(logs(), IsEmpty());
  EXPECT_EQ(store.localDataPath(), legacyFile);
  EXPECT_TRUE(store.keptOldFile());
  EXPECT_EQ(json::encode(store.load().get()), json::encode(sampleReadings(1)));
  store.save(sampleReadings(3)).get();
  EXPECT_EQ(readWholeFile(legacyFile), json::encode(sampleReadings(3)));
  EXPECT_EQ(readWholeFile(readingsFile()), json::encode(sampleReadings(2)));  // never read, never replaced
}

class ReadingsStoreConcurrencyTest : public StorageTest {};

// A thousand saves and loads from four threads, spread over stores that share one file: every load, and a
// fresh store's afterwards, sees one whole saved document. One plain store must run them one at a time;
// separate stores share the file without a lock, and only durable writes, which replace it whole, keep
// either from seeing a document half written by the other.
TEST_F(ReadingsStoreConcurrencyTest, LoadsOnlyEverSeeWholeSavedDocuments) {
  const auto document = [](int generation) { return sampleReadings(generation, 4 + generation); };
  std::set<std::string> saved;
  for (int generation = 0; generation < 8; ++generation) saved.insert(json::encode(document(generation)));
  const auto isSaved = [&](const Readings& loaded) { return saved.contains(json::encode(loaded)); };

  for (const auto& [durable, storeCount] : {std::pair{false, 1}, {true, 2}}) {
    SCOPED_TRACE(durable ? "two durable stores" : "one plain store");
    std::vector<std::unique_ptr<ReadingsStore>> stores;
    for (int i = 0; i < storeCount; ++i)
      stores.push_back(std::make_unique<ReadingsStore>(locations(), StorageOptions{.durable = durable}));
    stores[0]->save(document(0)).get();

    std::atomic<int> tornLoads{0};
    std::vector<std::thread> workers;
    for (int t = 0; t < 4; ++t) {
      workers.emplace_back([&, t] {
        std::vector<std::future<void>> saves;
        std::vector<std::future<Readings>> loads;
        for (int call = 0; call < 250; ++call) {
          ReadingsStore& store = *stores[static_cast<std::size_t>(t + call) % stores.size()];
          if (call % 2 == 0) saves.push_back(store.save(document((t * 250 + call) % 8)));
          if (call % 2 == 1) loads.push_back(store.load());
        }
        for (auto& save : saves) save.get();
        for (auto& load : loads) tornLoads += isSaved(load.get()) ? 0 : 1;
      });
    }
    for (auto& worker : workers) worker.join();

    EXPECT_EQ(tornLoads.load(), 0);
    EXPECT_TRUE(isSaved(ReadingsStore(locations(), StorageOptions{.durable = durable}).loadExisting().get()));
    EXPECT_THAT(logs(), IsEmpty());
    EXPECT_THAT(namesStartingWith(container(), "."), IsEmpty());  // no temporary file left
  }
}

using ReadingsStoreDeathTest = StorageTest;

TEST_F(ReadingsStoreDeathTest, MissingFoldersStopTheProcess) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const StorageLocations noContainer{std::nullopt, {documents()}};
  EXPECT_DEATH(ReadingsStore{noContainer}, "Can't find documents directory");
  EXPECT_DEATH(ReadingsStore(StorageLocations{container(), {}}), "Can't find documents directory");
  EXPECT_DEATH(detail::TagsStore{noContainer}, "Can't find documents directory");
}

}  // namespace
}  // namespace cardiolith::testing
