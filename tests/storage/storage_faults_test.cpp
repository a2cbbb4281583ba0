#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cardiolith/storage/readings_store.hpp"
#include "cardiolith/storage/tags_manager.hpp"
#include "storage_test_support.hpp"

namespace cardiolith::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;

// Every fault in both write modes: what the caller is told, what is logged, and what is left on disk.
class StorageFaultTest : public StorageTest, public ::testing::WithParamInterface<bool> {
 protected:
  bool durable() const { return GetParam(); }
  StorageOptions options() const { return StorageOptions{.durable = durable()}; }
  fs::path readingsFile() const { return container() / "readings"; }
  fs::path tagsFile() const { return container() / "tags"; }

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

  std::vector<std::string> unreadableCopies(std::string_view name) const {
    return namesStartingWith(container(), std::string(name) + ".unreadable-");
  }
  std::vector<std::string> temporaryFiles() const { return namesStartingWith(container(), "."); }
};

INSTANTIATE_TEST_SUITE_P(WriteModes, StorageFaultTest, ::testing::Bool(),
                         [](const auto& info) { return info.param ? "Durable" : "Plain"; });

TEST_P(StorageFaultTest, FolderWithoutWritePermission) {
  ReadingsStore(locations(), options()).save(sampleReadings(1)).get();
  fs::permissions(container(), fs::perms::owner_read | fs::perms::owner_exec | fs::perms::group_read |
                                   fs::perms::group_exec | fs::perms::others_read | fs::perms::others_exec);
  fs::permissions(readingsFile(), fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read |
                                      fs::perms::others_read);
  std::string error;
  std::vector<std::string> tagErrors;
  const bool ran = runWithoutFileOverride(container(), [&] {
    ReadingsStore store(locations(), options());
    error = saveError(store, sampleReadings(2));
    EXPECT_TRUE(sameReadings(store.load().get(), sampleReadings(1)));

    TagsManager manager(locations(), options());
    manager.waitUntilLoaded();
    clearLogs();
    manager.insert(Tag{UUID::random(), "New", "ffffff"});
    manager.waitForPendingSaves();
    tagErrors = messages(LogLevel::error);
  });
  if (!ran) GTEST_SKIP() << "permissions do not apply to this process";

  EXPECT_THAT(error, HasSubstr("Permission denied"));
  EXPECT_THAT(error, HasSubstr(readingsFile().string()));
  ASSERT_THAT(tagErrors, SizeIs(1));
  EXPECT_THAT(tagErrors[0], StartsWith("Failed to save tags "));
  EXPECT_THAT(tagErrors[0], HasSubstr("Permission denied"));
  EXPECT_EQ(fileContent(readingsFile()), json::encode(sampleReadings(1)));
  EXPECT_FALSE(fs::exists(tagsFile()));
}

TEST_P(StorageFaultTest, FullDisk) {
  const std::string previous = json::encode(sampleReadings(1));
  const std::string next = json::encode(sampleReadings(2, 6));
  for (const std::size_t room : {std::size_t{0}, std::size_t{1}, next.size() / 2, next.size() - 1}) {
    SCOPED_TRACE("room for " + std::to_string(room) + " bytes");
    writeFile(readingsFile(), previous);
    clearLogs();
    ReadingsStore store(locations(), options());
    detail::write_faults::failAfter(room);
    const auto error = saveError(store, sampleReadings(2, 6));
    detail::write_faults::failAfter(std::nullopt);

    EXPECT_THAT(error, HasSubstr("No space left on device"));
    EXPECT_THAT(error, HasSubstr(readingsFile().string()));
    EXPECT_THAT(temporaryFiles(), IsEmpty());
    if (durable()) {
      EXPECT_EQ(fileContent(readingsFile()), previous);
      EXPECT_TRUE(sameReadings(store.load().get(), sampleReadings(1)));
      EXPECT_THAT(logs(), IsEmpty());
    } else {
      // The plain write truncated the file first: what is left is the start of the new document.
      EXPECT_EQ(fileContent(readingsFile()), next.substr(0, room));
      EXPECT_TRUE(store.load().get().readings.empty());
      ASSERT_THAT(messages(LogLevel::error), SizeIs(1));
      EXPECT_THAT(messages(LogLevel::error)[0], StartsWith("Unable to load readings: "));
    }
  }
}

TEST_P(StorageFaultTest, FullDiskDuringATagSave) {
  const std::vector<Tag> previous{Tag{UUID::random(), "Old", "000000"}};
  writeFile(tagsFile(), json::encode(previous));
  TagsManager manager(locations(), options());
  manager.waitUntilLoaded();
  detail::write_faults::failAfter(5);
  manager.insert(Tag{UUID::random(), "New", "ffffff"});
  manager.waitForPendingSaves();
  detail::write_faults::failAfter(std::nullopt);

  const auto errors = messages(LogLevel::error);
  ASSERT_THAT(errors, SizeIs(1));
  EXPECT_THAT(errors[0], StartsWith("Failed to save tags "));
  EXPECT_THAT(errors[0], HasSubstr("No space left on device"));
  EXPECT_EQ(manager.tags().size(), 2U);
  if (durable()) {
    EXPECT_EQ(fileContent(tagsFile()), json::encode(previous));
  } else {
    EXPECT_EQ(fileContent(tagsFile()).size(), 5U);
  }
}

TEST_P(StorageFaultTest, ReadingsFileReplacedByAFolder) {
  fs::create_directories(readingsFile() / "inside");
  ReadingsStore store(locations(), options());
  EXPECT_THAT(saveError(store, sampleReadings(1)), HasSubstr("Is a directory"));
  EXPECT_TRUE(store.load().get().readings.empty());
  const auto errors = messages(LogLevel::error);
  ASSERT_THAT(errors, SizeIs(1));
  EXPECT_THAT(errors[0], StartsWith("Unable to load readings: "));
  EXPECT_THAT(errors[0], HasSubstr("Is a directory"));
  EXPECT_TRUE(fs::is_directory(readingsFile() / "inside"));
  EXPECT_THAT(unreadableCopies("readings"), IsEmpty());  // a folder is nothing a save could destroy
  EXPECT_THAT(temporaryFiles(), IsEmpty());
}

// Every proper prefix of a valid document: loads as empty with an error, and in durable mode the
// unreadable bytes are kept aside before the next save replaces the file.
TEST_P(StorageFaultTest, FileTruncatedAtEveryOffset) {
  const std::string whole = json::encode(sampleReadings(1, 2));
  ReadingsStore store(locations(), options());
  for (std::size_t length = 0; length < whole.size(); ++length) {
    SCOPED_TRACE("first " + std::to_string(length) + " bytes");
    const std::string truncated = whole.substr(0, length);
    writeFile(readingsFile(), truncated);
    clearLogs();
    EXPECT_TRUE(store.load().get().readings.empty());
    const auto errors = messages(LogLevel::error);
    ASSERT_THAT(errors, SizeIs(1));
    EXPECT_THAT(errors[0], StartsWith("Unable to load readings: "));
    const auto copies = unreadableCopies("readings");
    if (durable()) {
      ASSERT_THAT(copies, SizeIs(1));
      EXPECT_EQ(fileContent(container() / copies[0]), truncated);
      fs::remove(container() / copies[0]);
    } else {
      EXPECT_THAT(copies, IsEmpty());
    }
  }
}

TEST_P(StorageFaultTest, UnreadableFileIsKeptOnceAndSurvivesTheNextSave) {
  writeFile(readingsFile(), "{\"readings\":[");
  writeFile(tagsFile(), "[{");
  {
    ReadingsStore store(locations(), options());
    EXPECT_TRUE(store.load().get().readings.empty());
    EXPECT_TRUE(store.load().get().readings.empty());  // the same bytes again: no second copy
    store.save(sampleReadings(3)).get();
    TagsManager manager(locations(), options());
    manager.insert(Tag{UUID::random(), "New", "ffffff"});
  }
  EXPECT_EQ(fileContent(readingsFile()), json::encode(sampleReadings(3)));
  const auto readingsCopies = unreadableCopies("readings");
  const auto tagsCopies = unreadableCopies("tags");
  if (!durable()) {
    EXPECT_THAT(readingsCopies, IsEmpty());
    EXPECT_THAT(tagsCopies, IsEmpty());
    return;
  }
  ASSERT_THAT(readingsCopies, SizeIs(1));
  EXPECT_THAT(readingsCopies[0], ::testing::MatchesRegex("readings\\.unreadable-[0-9]{8}T[0-9]{6}Z"));
  EXPECT_EQ(fileContent(container() / readingsCopies[0]), "{\"readings\":[");
  ASSERT_THAT(tagsCopies, SizeIs(1));
  EXPECT_EQ(fileContent(container() / tagsCopies[0]), "[{");
  EXPECT_THAT(messages(LogLevel::info), ::testing::Contains(HasSubstr(readingsCopies[0])));

  writeFile(readingsFile(), "not json");  // a different unreadable document gets a copy of its own
  ReadingsStore(locations(), options()).load().get();
  EXPECT_THAT(unreadableCopies("readings"), SizeIs(2));
}

}  // namespace
}  // namespace cardiolith::testing
