#include "platform/file_io.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "support/temporary_directory.hpp"

namespace cardiolith::detail {
namespace {

using ::testing::AllOf;
using ::testing::Property;
using ::testing::Throws;

TEST(FileIOTest, WritesAndReadsWholeFilesByteForByte) {
  testing::TemporaryDirectory folder;
  const auto path = folder.path() / "readings";
  std::string bytes(100000, '\0');
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * 31);
  for (const std::string& content : {bytes, std::string("short"), std::string()}) {  // each truncates
    writeWholeFile(path, content);
    EXPECT_EQ(readWholeFile(path), content);
  }
}

TEST(FileIOTest, FailuresNameThePathAndTheReason) {
  testing::TemporaryDirectory folder;
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

}  // namespace
}  // namespace cardiolith::detail
