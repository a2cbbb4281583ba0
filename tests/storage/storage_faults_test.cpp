#include "cardiolith/storage/readings_store.hpp"
#include "cardiolith/storage/tags_manager.hpp"
#include "storage_test_support.hpp"

namespace cardiolith::testing {
namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

// Every fault in both write modes: what the caller is told, what is logged, and what is left on disk. In
// durable mode a failed save always leaves the previous document as it was.
class StorageFaultTest : public StorageTest, public ::testing::WithParamInterface<bool> {
 protected:
  bool durable() const { return GetParam(); }
  StorageOptions options() const { return StorageOptions{.durable = durable()}; }

  // The message of the error that a save of `readings` throws, or "" when it does not throw.
  static std::string saveError(ReadingsStore& store, const Readings& readings) {
    const auto saved = store.save(readings).share();  // keeps the error past the handler, as TagsManager does
    try {
      saved.get();
    } catch (const fs::filesystem_error& error) {
      return error.what();
    }
    return "";
  }
  std::vector<std::string> temporaryFiles() const { return namesStartingWith(container(), "."); }
};

INSTANTIATE_TEST_SUITE_P(WriteModes, StorageFaultTest, ::testing::Bool(),
                         [](const auto& test) { return test.param ? "Durable" : "Plain"; });

TEST_P(StorageFaultTest, FolderWithoutWritePermission) {
  writeWholeFile(readingsFile(), json::encode(sampleReadings(1)));
  const auto writable = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
  fs::permissions(container(), writable, fs::perm_options::remove);
  fs::permissions(readingsFile(), writable, fs::perm_options::remove);
  std::string error;
  const bool ran = runWithoutFileOverride(container(), [&] {
    ReadingsStore store(locations(), options());
    error = saveError(store, sampleReadings(2));
  });
  fs::permissions(container(), fs::perms::owner_all, fs::perm_options::add);
  if (!ran) GTEST_SKIP() << "permissions do not apply to this process";

  EXPECT_THAT(error, AllOf(HasSubstr("Permission denied"), HasSubstr(readingsFile().string())));
  EXPECT_EQ(readWholeFile(readingsFile()), json::encode(sampleReadings(1)));
  EXPECT_THAT(temporaryFiles(), IsEmpty());
}

// The disk fills up after a given number of bytes, through the library's write seam.
TEST_P(StorageFaultTest, FullDisk) {
  const std::string previous = json::encode(sampleReadings(1));
  const std::string next = json::encode(sampleReadings(2, 6));
  for (const std::size_t room : {std::size_t{0}, std::size_t{1}, next.size() / 2, next.size() - 1}) {
    SCOPED_TRACE("room for " + std::to_string(room) + " bytes");
    writeWholeFile(readingsFile(), previous);
    ReadingsStore store(locations(), options());
    detail::write_faults::failAfter(room);
    const auto error = saveError(store, sampleReadings(2, 6));
    detail::write_faults::failAfter(std::nullopt);

    EXPECT_THAT(error, AllOf(HasSubstr("No space left on device"), HasSubstr(readingsFile().string())));
    EXPECT_THAT(temporaryFiles(), IsEmpty());
    // The plain write truncates the file first: what is left is the start of the new document.
    EXPECT_EQ(readWholeFile(readingsFile()), durable() ? previous : next.substr(0, room));
  }

  // A failed tag save is logged and reported once to the caller who waits for it, and the change stays in
  // memory.
  const std::vector<Tag> stored{Tag{UUID::random(), "Old", "000000"}};
  writeWholeFile(tagsFile(), json::encode(stored));
  TagsManager manager(locations(), options());
  manager.waitUntilLoaded();
  detail::write_faults::failAfter(5);
  manager.insert(Tag{UUID::random(), "New", "ffffff"});
  EXPECT_THROW(manager.finishPendingSaves(), fs::filesystem_error);
  EXPECT_NO_THROW(manager.finishPendingSaves());
  EXPECT_THAT(logs(), ElementsAre(AllOf(StartsWith("error: Failed to save tags "),
                                        HasSubstr("No space left on device"))));
  ASSERT_EQ(manager.tags().size(), 2U);
  EXPECT_EQ(readWholeFile(tagsFile()),
            durable() ? json::encode(stored) : json::encode(manager.tags()).substr(0, 5));
}

TEST_P(StorageFaultTest, ReadingsFileReplacedByAFolder) {
  fs::create_directories(readingsFile() / "inside");
  ReadingsStore store(locations(), options());
  EXPECT_THAT(saveError(store, sampleReadings(1)), HasSubstr("Is a directory"));
  EXPECT_TRUE(store.load().get().readings.empty());
  EXPECT_THAT(logs(), ElementsAre(AllOf(StartsWith("error: Unable to load readings: "),
                                        HasSubstr("Is a directory"))));
  EXPECT_TRUE(fs::is_directory(readingsFile() / "inside"));
  EXPECT_THAT(namesStartingWith(container(), "readings."), IsEmpty());  // a folder is not copied aside
  EXPECT_THAT(temporaryFiles(), IsEmpty());
}

// Every proper prefix of a valid document loads as nothing, with an error; in durable mode the unreadable
// bytes are first copied aside, once however often they are loaded, so that the next save can't destroy them.
TEST_P(StorageFaultTest, FileTruncatedAtEveryOffset) {
  const std::string whole = json::encode(sampleReadings(1, 2));
  ReadingsStore store(locations(), options());
  for (std::size_t length = 0; length < whole.size(); ++length) {
    SCOPED_TRACE("first " + std::to_string(length) + " bytes");
    writeWholeFile(readingsFile(), whole.substr(0, length));
    clearLogs();
    EXPECT_TRUE(store.load().get().readings.empty());
    EXPECT_TRUE(store.load().get().readings.empty());
    EXPECT_THROW(store.loadExisting().get(), DecodingError);
    EXPECT_THAT(logs(), Contains(StartsWith("error: Unable to load readings: ")).Times(2));
    const auto copies = namesStartingWith(container(), "readings.unreadable-");
    ASSERT_THAT(copies, ::testing::SizeIs(durable() ? 1 : 0));
    if (durable()) {
      EXPECT_THAT(copies[0], ::testing::MatchesRegex("readings\\.unreadable-[0-9]{8}T[0-9]{6}Z"));
      EXPECT_EQ(readWholeFile(container() / copies[0]), whole.substr(0, length));
      EXPECT_THAT(logs(), Contains(HasSubstr(copies[0])));
      fs::remove(container() / copies[0]);
    }
  }
}

}  // namespace
}  // namespace cardiolith::testing
