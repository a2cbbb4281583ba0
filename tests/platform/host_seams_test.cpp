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
#include "cardiolith/platform/string_table.hpp"
#include "support/temporary_directory.hpp"

namespace cardiolith {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;

TEST(LoggerTest, DefaultHandlerWritesErrorsOnlyAndHandlersSeeEveryLevel) {
  ::testing::internal::CaptureStderr();
  Logger::standard().debug("quiet debug");
  Logger::standard().error("loud error");
  const std::string written = ::testing::internal::GetCapturedStderr();
  EXPECT_EQ(written.find("quiet debug"), std::string::npos);
  EXPECT_NE(written.find("loud error"), std::string::npos);

  std::vector<std::pair<LogLevel, std::string>> records;
  Logger::setHandler([&](const LogRecord& record) { records.emplace_back(record.level, record.message); });
  Logger::standard().debug("one");
  Logger::standard().fault("two");
  Logger::setHandler(nullptr);
  Logger::standard().debug("after restore");
  EXPECT_EQ(records, (std::vector<std::pair<LogLevel, std::string>>{{LogLevel::debug, "one"},
                                                                    {LogLevel::fault, "two"}}));
}

TEST(ProcessInfoTest, ReadsTheRealArgumentsUntilOverridden) {
  const auto real = ProcessInfo::arguments();
  ASSERT_FALSE(real.empty());
  EXPECT_NE(real[0].find("cardiolith_platform_tests"), std::string::npos);
  ProcessInfo::setArguments({"app", "DELETE_ALL_RECORDS"});
  EXPECT_TRUE(ProcessInfo::hasArgument("DELETE_ALL_RECORDS"));
  EXPECT_FALSE(ProcessInfo::hasArgument("DELETE_ALL"));
  ProcessInfo::setArguments(real);
  EXPECT_EQ(ProcessInfo::arguments(), real);
}

// Sets (or, given nothing, clears) one environment variable for a scope.
class ScopedVariable {
 public:
  ScopedVariable(const char* name, const std::optional<std::filesystem::path>& value) : name_(name) {
    if (const char* old = std::getenv(name)) previous_ = old;
    value ? ::setenv(name, value->c_str(), 1) : ::unsetenv(name);
  }
  ~ScopedVariable() { previous_ ? ::setenv(name_, previous_->c_str(), 1) : ::unsetenv(name_); }
  ScopedVariable(const ScopedVariable&) = delete;
  ScopedVariable& operator=(const ScopedVariable&) = delete;

 private:
  const char* name_;
  std::optional<std::string> previous_;
};

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
    const ScopedVariable group("CARDIOLITH_GROUP_CONTAINER", at(c.group));
    const ScopedVariable documents("CARDIOLITH_DOCUMENTS_DIR", at(c.documents));
    const ScopedVariable xdg("XDG_DATA_HOME", at(c.xdg));
    const ScopedVariable home("HOME", at(c.home));
    const auto locations = StorageLocations::current();
    const auto container = at(c.container);
    const auto document = at(c.document);
    EXPECT_EQ(locations.sharedContainer, container);
    EXPECT_TRUE(!container || std::filesystem::is_directory(*container)) << "the container was not created";
    EXPECT_EQ(locations.documentDirectories, document ? Paths{*document} : Paths{});
    EXPECT_TRUE(!document || !std::filesystem::exists(*document)) << "the documents folder was created";
  }
}

TEST(StringTableTest, TranslatorFallsBackToTheKey) {
  EXPECT_EQ(StringTable::localized("Morning"), "Morning");
  StringTable::setTranslator([](std::string_view key, std::string_view) -> std::optional<std::string> {
    if (key == "Morning") return "Morgen";
    return std::nullopt;
  });
  EXPECT_EQ(StringTable::localized("Morning"), "Morgen");
  EXPECT_EQ(StringTable::localized("Evening"), "Evening");
  StringTable::setTranslator(nullptr);
  EXPECT_EQ(StringTable::localized("Morning"), "Morning");
}

TEST(AllInfoStringTest, DescribesTypePathsCodesAndNestedCauses) {
  const std::filesystem::filesystem_error fileError("cannot move", "/a/readings", "/b/readings",
                                                    std::make_error_code(std::errc::file_exists));
  EXPECT_THAT(allInfoString(fileError),
              AllOf(HasSubstr("std::filesystem::__cxx11::filesystem_error"), HasSubstr("/a/readings"),
                    HasSubstr("/b/readings"), HasSubstr("error " + std::to_string(EEXIST))));
  try {
    try {
      throw std::runtime_error("inner");
    } catch (...) {
      std::throw_with_nested(std::logic_error("outer"));
    }
  } catch (const std::exception& error) {
    EXPECT_THAT(allInfoString(error),
                AllOf(HasSubstr("outer"), HasSubstr("caused by std::runtime_error: inner")));
  }
}

}  // namespace
}  // namespace cardiolith
