// What the tool does with the log's files when they or their names are hostile: its own program name,
// links, FIFOs, a deleted lock, relative or empty folder names, two readings files.

#include <sys/stat.h>

#include <atomic>
#include <fstream>
#include <thread>

#include "tool_test.hpp"

namespace cardiolith::tool::testing {
namespace {

namespace fs = std::filesystem;
using StorageSafetyTest = ToolTest;

fs::perms permissionsOf(const fs::path& path) { return fs::status(path).permissions() & fs::perms::all; }

TEST_F(StorageSafetyTest, NoNameTheToolRunsUnderDeletesTheLog) {
  succeed({"add", "120/80/60"});
  const auto link = root_ / "DELETE_ALL_RECORDS";
  fs::create_symlink(CARDIOLITH_TOOL_PATH, link);
  program_ = link.string();  // a link of that name on the PATH
  EXPECT_EQ(run({"list"}).exitCode, 0);
  program_ = CARDIOLITH_TOOL_PATH;
  argv0_ = "DELETE_ALL_RECORDS";  // exec -a
  EXPECT_EQ(run({"list"}).exitCode, 0);
  argv0_.reset();
  EXPECT_EQ(listed().size(), 1u);
}

TEST_F(StorageSafetyTest, ReadOnlyCommandsCreateNoFolderAndNoFile) {
  const std::vector<Arguments> readers{{"list"},
                                       {"list", "--json"},
                                       {"summary"},
                                       {"export"},
                                       {"classify", "120/80"},
                                       {"tags"},
                                       {"info"},
                                       {"report"},
                                       {"undo"},  // with nothing to undo
                                       {"chart", "--out", (root_ / "chart.svg").string()}};
  for (const auto& arguments : readers) run(arguments);
  EXPECT_FALSE(fs::exists(data_));
  for (const auto& arguments : readers) run(arguments, false);
  EXPECT_FALSE(fs::exists(root_ / "home" / ".local"));
  fs::create_directory(data_);
  for (const auto& arguments : readers) run(arguments);
  EXPECT_TRUE(fs::is_empty(data_));
}

TEST_F(StorageSafetyTest, TheLogIsForItsOwnerOnly) {
  succeed({"add", "120/80/60"});
  succeed({"tags", "add", "Clinic"});
  EXPECT_EQ(permissionsOf(data_), fs::perms::owner_all);
  for (const auto& file : {readingsFile_, tagsFile_})
    EXPECT_EQ(permissionsOf(file), fs::perms::owner_read | fs::perms::owner_write) << file;
}

// Before, each command locked whatever file the name held when it opened it, so a lock file deleted
// while held let the next command in beside the holder, and additions were lost.
TEST_F(StorageSafetyTest, DeletingTheLockFileWhileAddsRunLosesNothing) {
  succeed({"add", "120/80/60"});
  std::atomic<bool> done{false};
  std::thread deleter([&] {
    while (!done) {
      std::ofstream(data_ / "readings.lock") << "";
      std::error_code ignored;
      fs::remove(data_ / "readings.lock", ignored);
    }
  });
  const auto results = runAll(std::vector<Arguments>(200, {"add", "121/81/61", "--force"}));
  done = true;
  deleter.join();
  for (const auto& result : results) ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(listed().size(), 201u);
}

// A FIFO with no writer would hang the command; it is refused at once instead. Devices and files over the
// size limit are refused by the same check, unit-tested with file_io.
TEST_F(StorageSafetyTest, ReadingsAndTagsFilesThatAreNotRegularFilesAreRefused) {
  fs::create_directory(data_);
  for (const auto& [path, commands] :
       {std::pair{readingsFile_, std::vector<Arguments>{{"list"}, {"add", "120/80/60"}}},
        std::pair{tagsFile_, std::vector<Arguments>{{"tags", "add", "Clinic"}}}}) {
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    for (const auto& arguments : commands) {
      const auto err = refusal(arguments);
      EXPECT_THAT(err, HasSubstr("not a regular file")) << arguments.front();
      EXPECT_THAT(err, ::testing::Not(HasSubstr("filesystem error"))) << arguments.front();
    }
    fs::remove(path);
  }
}

TEST_F(StorageSafetyTest, AReadingsFileThatIsALinkIsWrittenThrough) {
  const auto synced = root_ / "synced" / "readings";
  writeFile(synced, R"({"readings":[]})");
  fs::create_directory(data_);
  fs::create_symlink(synced, readingsFile_);
  succeed({"add", "120/80/60"});
  EXPECT_TRUE(fs::is_symlink(readingsFile_));
  EXPECT_THAT(readFile(synced), HasSubstr("\"systolic\":120"));
}

TEST_F(StorageSafetyTest, FolderNamesAreTakenAsTheShellWouldOrRefused) {
  EXPECT_EQ(run({"--data-dir", "~/log", "add", "120/80/60"}, false).exitCode, 0);
  EXPECT_EQ(run({"--data-dir=~/log", "add", "120/80/60", "--force"}, false).exitCode, 0);
  const auto listing = run({"--data-dir", (root_ / "home" / "log").string(), "list", "--json"}, false);
  EXPECT_EQ(nlohmann::json::parse(listing.out)["readings"].size(), 2u);
  EXPECT_FALSE(fs::exists("~"));

  const auto empty = run({"--data-dir", "", "add", "120/80/60"}, false);
  EXPECT_EQ(empty.exitCode, 1);
  EXPECT_THAT(empty.err, HasSubstr("--data-dir: the folder name is empty"));

  environment_["XDG_DATA_HOME"] = "relative";
  const auto relative = run({"add", "120/80/60"}, false);
  EXPECT_EQ(relative.exitCode, 0);
  EXPECT_THAT(relative.err, HasSubstr("ignoring XDG_DATA_HOME=\"relative\": it must be an absolute path"));
  EXPECT_TRUE(fs::exists(root_ / "home" / ".local" / "share" / "group.cardiolith" / "readings"));
}

TEST_F(StorageSafetyTest, TwoReadingsFilesAreNamedInOneWarningPerCommand) {
  environment_["CARDIOLITH_GROUP_CONTAINER"] = (root_ / "shared").string();
  environment_["CARDIOLITH_DOCUMENTS_DIR"] = (root_ / "old").string();
  writeFile(root_ / "shared" / "readings", R"({"readings":[]})");
  writeFile(root_ / "old" / "readings", R"({"readings":[]})");
  for (const Arguments& arguments : {Arguments{"list"}, Arguments{"summary"}, Arguments{"export"}}) {
    const auto result = run(arguments, false);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    const auto warnings = lines(result.err);
    ASSERT_EQ(warnings.size(), 2u) << result.err;
    EXPECT_THAT(warnings[0], HasSubstr("there are two readings files, " + (root_ / "old/readings").string()));
    EXPECT_THAT(warnings[1], HasSubstr("cardiolith import"));
  }
}

TEST_F(StorageSafetyTest, AnUnreadableTagsFileIsNamedOncePerCommandWithWhatToDo) {
  succeed({"add", "120/80/60"});
  writeFile(tagsFile_, "[{\"id\": broken");
  for (const Arguments& command :
       {Arguments{"list"}, Arguments{"tags"}, Arguments{"export"}, Arguments{"info"}}) {
    const auto result = run(command);
    EXPECT_EQ(result.exitCode, 0) << command.front();
    ASSERT_EQ(lines(result.err).size(), 1u) << result.err;
    EXPECT_THAT(result.err, HasSubstr("can't read the tags file " + tagsFile_.string() + " ("));
    EXPECT_THAT(result.err, HasSubstr("Move it aside (or restore it from a backup)"));
  }
  EXPECT_THAT(succeed({"info"}), HasSubstr("can't be read (see the message above): the 10 default tags"));
}

TEST_F(StorageSafetyTest, InfoNamesTheFilesAndWhatTheyHold) {
  EXPECT_THAT(succeed({"info"}), HasSubstr("Readings file: " + readingsFile_.string() +
                                           "\n  not there yet: the first cardiolith add creates it"));
  succeed({"add", "120/80/60", "--at", "2026-01-02 08:00"});
  succeed({"add", "121/80/60", "--at", "2026-03-04 09:00"});
  const auto info = succeed({"info"});
  EXPECT_THAT(info, HasSubstr("Data folder: " + data_.string() + " (chosen with --data-dir)"));
  EXPECT_THAT(info, HasSubstr("2 readings, from 2026-01-02 08:00 to 2026-03-04 09:00"));
  EXPECT_THAT(info, HasSubstr("Tags file: " + tagsFile_.string()));
  EXPECT_THAT(info, HasSubstr("Lock: the data folder itself"));

  writeFile(readingsFile_, "{broken");  // named with what to do, and the rest is still shown
  EXPECT_THAT(succeed({"info"}), MatchesRegex(".*Readings file: " + readingsFile_.string() +
                                              "\n  can't read the readings file .*\n  Restore it from a "
                                              "backup, or move it aside.*\nTags file: .*"));
}

}  // namespace
}  // namespace cardiolith::tool::testing
