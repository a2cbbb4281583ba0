#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <system_error>

#include "cardiolith/platform/analytics_backend.hpp"
#include "cardiolith/platform/logger.hpp"
#include "cardiolith/platform/process_info.hpp"
#include "cardiolith/platform/storage_locations.hpp"
#include "support/scoped_variable.hpp"
#include "support/temporary_directory.hpp"

namespace cardiolith {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

TEST(LoggerTest, DefaultHandlerWritesErrorsOnlyAndHandlersSeeEveryLevel) {
  ::testing::internal::CaptureStderr();
  Logger::standard().debug("quiet debug");
  Logger::standard().error("loud error");
  EXPECT_THAT(::testing::internal::GetCapturedStderr(),
              AllOf(HasSubstr("loud error"), Not(HasSubstr("quiet debug"))));

  std::vector<std::pair<LogLevel, std::string>> records;
  Logger::setHandler([&](const LogRecord& record) { records.emplace_back(record.level, record.message); });
  Logger::standard().debug("one");
  Logger::standard().fault("two");
  Logger::setHandler(nullptr);
  Logger::standard().debug("after restore");
  EXPECT_EQ(records, (std::vector<std::pair<LogLevel, std::string>>{{LogLevel::debug, "one"},
                                                                    {LogLevel::fault, "two"}}));
}

// Which arguments match, and that set ones replace the real ones, is settled by the storage tests of
// "DELETE_ALL_RECORDS"; here, where the real ones come from.
TEST(ProcessInfoTest, ReadsTheRealArguments) {
  EXPECT_THAT(ProcessInfo::arguments().at(0), HasSubstr("cardiolith_platform_tests"));
}

TEST(StorageLocationsTest, EnvironmentPrecedenceAndFolderCreation) {
  // Paths relative to a fresh folder; null: unset, or expected absent.
  const struct {
    const char *group, *documents, *xdg, *home, *container, *document;
  } cases[] = {
      {nullptr, nullptr, nullptr, "h", "h/.local/share/group.cardiolith", "h/.local/share/cardiolith"},
      {nullptr, nullptr, "x", "h", "x/group.cardiolith", "x/cardiolith"},
      {"g/g", "d", "x", "h", "g/g", "d"},
      {"file/g", nullptr, nullptr, "h", nullptr, "h/.local/share/cardiolith"},  // a file is in the way
      {nullptr, nullptr, nullptr, nullptr, nullptr, nullptr},
  };
  using Paths = std::vector<std::filesystem::path>;
  testing::TemporaryDirectory root;
  std::ofstream(root.path() / "file") << "x";
  const auto at = [&](const char* relative) {
    return relative ? std::optional(root.path() / relative) : std::nullopt;
  };
  for (const auto& c : cases) {
    const testing::ScopedVariable variables[] = {{"CARDIOLITH_GROUP_CONTAINER", at(c.group)},
                                                 {"CARDIOLITH_DOCUMENTS_DIR", at(c.documents)},
                                                 {"XDG_DATA_HOME", at(c.xdg)},
                                                 {"HOME", at(c.home)}};
    const auto locations = StorageLocations::current();
    const auto container = at(c.container), document = at(c.document);
    EXPECT_EQ(locations.sharedContainer, container);
    EXPECT_TRUE(!container || std::filesystem::is_directory(*container)) << "the container was not created";
    EXPECT_EQ(locations.documentDirectories, document ? Paths{*document} : Paths{});
    EXPECT_TRUE(!document || !std::filesystem::exists(*document)) << "the documents folder was created";
  }
}

TEST(StorageLocationsTest, RelativeVariablesAreIgnoredAndPlannedPlacesAreNotCreated) {
  testing::TemporaryDirectory root;
  const testing::ScopedVariable variables[] = {
      {"CARDIOLITH_GROUP_CONTAINER", std::string("relative/group")},
      {"CARDIOLITH_DOCUMENTS_DIR", std::string("relative/documents")},
      {"XDG_DATA_HOME", std::string("relative")},
      {"HOME", (root.path() / "h").string()}};
  const auto planned = StorageLocations::planned();
  EXPECT_EQ(planned.sharedContainer, root.path() / "h/.local/share/group.cardiolith");
  EXPECT_EQ(planned.documentDirectories, std::vector{root.path() / "h/.local/share/cardiolith"});
  EXPECT_FALSE(std::filesystem::exists(root.path() / "h"));

  const auto created = StorageLocations::current();
  ASSERT_EQ(created.sharedContainer, planned.sharedContainer);
  for (auto folder = *created.sharedContainer; folder != root.path(); folder = folder.parent_path()) {
    EXPECT_EQ(std::filesystem::status(folder).permissions() & std::filesystem::perms::all,
              std::filesystem::perms::owner_all)
        << folder;
  }
}

TEST(AllInfoStringTest, DescribesTypePathsCodesAndNestedCauses) {
  try {
    try {
      throw std::filesystem::filesystem_error("cannot move", "/a/readings", "/b/readings",
                                              std::make_error_code(std::errc::file_exists));
    } catch (...) {
      std::throw_with_nested(std::logic_error("outer"));
    }
  } catch (const std::exception& error) {
    EXPECT_THAT(allInfoString(error),
                AllOf(HasSubstr("outer; caused by std::filesystem::__cxx11::filesystem_error: "),
                      HasSubstr("[path1: /a/readings] [path2: /b/readings]"),
                      HasSubstr("error " + std::to_string(EEXIST) + "]")));
  }
}

}  // namespace
}  // namespace cardiolith
