#include "platform/file_io.hpp"

#include <gtest/gtest.h>

#include <string>

#include "support/temporary_directory.hpp"

namespace cardiolith::detail {
namespace {

TEST(FileIOTest, WritesAndReadsWholeFilesByteForByte) {
  testing::TemporaryDirectory folder;
  const auto path = folder.path() / "readings";
  std::string bytes(100000, '\0');
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * 31);
  writeWholeFile(path, bytes);
  EXPECT_EQ(readWholeFile(path), bytes);
  writeWholeFile(path, "short");  // truncates
  EXPECT_EQ(readWholeFile(path), "short");
  writeWholeFile(path, "");
  EXPECT_EQ(readWholeFile(path), "");
}

TEST(FileIOTest, FailuresNameThePathAndTheReason) {
  testing::TemporaryDirectory folder;
  const auto missing = folder.path() / "missing";
  try {
    readWholeFile(missing);
    FAIL() << "reading a missing file succeeded";
  } catch (const std::filesystem::filesystem_error& error) {
    EXPECT_EQ(error.path1(), missing);
    EXPECT_EQ(error.code(), std::errc::no_such_file_or_directory);
  }
  EXPECT_THROW(readWholeFile(folder.path()), std::filesystem::filesystem_error);  // a folder
  EXPECT_THROW(writeWholeFile(folder.path() / "no/such/folder/file", "x"), std::filesystem::filesystem_error);
}

}  // namespace
}  // namespace cardiolith::detail
