#include "platform/file_io.hpp"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <tuple>

#include "support/temporary_directory.hpp"

namespace cardiolith::detail {
namespace {

using ::testing::AllOf;
using ::testing::Property;
using ::testing::Throws;

// Every test writes in a folder of its own.
class FileIOTest : public ::testing::Test {
 protected:
  testing::TemporaryDirectory folder;
};

TEST_F(FileIOTest, WritesAndReadsWholeFilesByteForByte) {
  const auto path = folder.path() / "readings";
  std::string bytes(100000, '\0');
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * 31);
  for (const std::string& content : {bytes, std::string("short"), std::string()}) {  // each truncates
    writeWholeFile(path, content);
    EXPECT_EQ(readWholeFile(path), content);
  }
}

TEST_F(FileIOTest, FailuresNameThePathAndTheReason) {
  const auto missing = folder.path() / "missing";
  const auto readMissing = [&] { readWholeFile(missing); };
  EXPECT_THAT(
      readMissing,
      Throws<std::filesystem::filesystem_error>(AllOf(
          Property(&std::filesystem::filesystem_error::path1, missing),
          Property(&std::system_error::code, std::make_error_code(std::errc::no_such_file_or_directory)))));
  EXPECT_THROW(readWholeFile(folder.path()), std::filesystem::filesystem_error);  // a folder
  EXPECT_THROW(writeWholeFile(folder.path() / "no/such/folder/file", "x"), std::filesystem::filesystem_error);
}

// Each is refused before a byte is read, with a reason the tool shows as it is: a FIFO without a writer would
// block, a device never ends.
TEST_F(FileIOTest, RefusesWhatIsNotARegularFileOrTooLarge) {
  const auto fifo = folder.path() / "fifo", zeroLink = folder.path() / "zero", huge = folder.path() / "huge";
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  std::filesystem::create_symlink("/dev/zero", zeroLink);
  writeWholeFile(huge, "");
  std::filesystem::resize_file(huge, kMaximumFileSize + 1);  // sparse: takes no room
  const std::tuple<std::filesystem::path, std::errc, const char*> cases[] = {
      {fifo, std::errc::invalid_argument, "refusing to read what is not a regular file"},
      {zeroLink, std::errc::invalid_argument, "refusing to read what is not a regular file"},
      {huge, std::errc::file_too_large, "refusing to read a file larger than 1 GiB"}};
  for (const auto& [path, code, reason] : cases) {
    try {
      readWholeFile(path);
      ADD_FAILURE() << path << " was read";
    } catch (const std::filesystem::filesystem_error& error) {
      EXPECT_EQ(error.code(), std::make_error_code(code)) << path;
      EXPECT_THAT(error.what(), ::testing::HasSubstr(reason)) << path;
    }
  }
}

TEST_F(FileIOTest, DurableReplaceWritesThroughASymbolicLinkAndKeepsIt) {
  const auto synced = folder.path() / "synced";
  std::filesystem::create_directory(synced);
  const auto target = synced / "readings", link = folder.path() / "readings";
  writeWholeFile(target, "old");
  std::filesystem::create_symlink("synced/readings", link);  // relative, as users make them
  replaceWholeFileDurably(link, "new");
  EXPECT_TRUE(std::filesystem::is_symlink(link));
  EXPECT_EQ(readWholeFile(target), "new");
}

TEST_F(FileIOTest, NewFilesAreForTheOwnerOnly) {
  const auto plain = folder.path() / "plain", durable = folder.path() / "durable",
             created = folder.path() / "created";
  writeWholeFile(plain, "x");
  replaceWholeFileDurably(durable, "x");
  createFileDurably(created, "x");
  for (const auto& path : {plain, durable, created}) {
    EXPECT_EQ(std::filesystem::status(path).permissions() & std::filesystem::perms::all,
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write)
        << path;
  }
}

TEST_F(FileIOTest, DurableReplaceRemovesTemporariesOfKilledSavesOnly) {
  const auto path = folder.path() / "readings";
  const auto abandoned = folder.path() / ".readings.tmp-0000000000000001";
  const auto inUse = folder.path() / ".readings.tmp-0000000000000002";
  const auto anHourAgo = std::filesystem::file_time_type::clock::now() - std::chrono::hours(1);
  for (const auto& temporary : {abandoned, inUse}) {
    writeWholeFile(temporary, "torn");
    std::filesystem::last_write_time(temporary, anHourAgo);
  }
  FileDescriptor writer(::open(inUse.c_str(), O_RDONLY | O_CLOEXEC));
  ASSERT_EQ(::flock(writer.get(), LOCK_EX), 0);  // a save still running in another process
  replaceWholeFileDurably(path, "saved");
  EXPECT_FALSE(std::filesystem::exists(abandoned));
  EXPECT_TRUE(std::filesystem::exists(inUse));
  EXPECT_EQ(readWholeFile(path), "saved");
}

}  // namespace
}  // namespace cardiolith::detail
