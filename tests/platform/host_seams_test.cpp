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

TEST(LoggerTest, DefaultHandlerWritesErrorsOnlyAndHandlersSeeEveryLevel) {
  ::testing::internal::CaptureStderr();
  Logger::standard().debug("quiet debug");
  Logger::standard().error("loud error");
  const std::string written = ::testing::internal::GetCapturedStderr();
  EXPECT_EQ(written.find("quiet debug"), std::string::npos);
  EXPECT_NE(written.find("loud error"), std::string::npos);

  std::vector<std::pair<LogLevel, std::string>> records;
  Logger::setHandler([&](const LogRecord& record) {
    EXPECT_EQ(record.subsystem, Logger::subsystemID);
    EXPECT_EQ(record.category, "default");
    records.emplace_back(record.level, std::string(record.message));
  });
  Logger::standard().debug("one");
  Logger::standard().error("two");
  Logger::setHandler(nullptr);
  Logger::standard().debug("after restore");
  EXPECT_EQ(records, (std::vector<std::pair<LogLevel, std::string>>{{LogLevel::debug, "one"}, {LogLevel::error, "two"}}));
}

TEST(ProcessInfoTest, ReadsTheRealArgumentsUntilOverridden) {
  const auto real = ProcessInfo::arguments();
  ASSERT_FALSE(real.empty());
  EXPECT_NE(real[0].find("cardiolith_platform_tests"), std::string::npos);
  ProcessInfo::setArguments({"app", "DELETE_ALL_RECORDS"});
  EXPECT_TRUE(ProcessInfo::hasArgument("DELETE_ALL_RECORDS"));
  EXPECT_FALSE(ProcessInfo::hasArgument("DELETE_ALL"));
  EXPECT_FALSE(ProcessInfo::hasArgument("delete_all_records"));
  ProcessInfo::setArguments(real);
  EXPECT_EQ(ProcessInfo::arguments(), real);
}

// Sets or clears one environment variable for a scope.
class ScopedVariable {
 public:
  ScopedVariable(const char* name, const char* value) : name_(name) {
    if (const char* old = std::getenv(name)) previous_ = old;
    value ? ::setenv(name, value, 1) : ::unsetenv(name);
  }
  ~ScopedVariable() { previous_ ? ::setenv(name_, previous_->c_str(), 1) : ::unsetenv(name_); }

 private:
  const char* name_;
  std::optional<std::string> previous_;
};

TEST(StorageLocationsTest, EnvironmentPrecedenceAndFolderCreation) {
  testing::TemporaryDirectory root;
  const auto home = root.path() / "home";
  const auto xdg = root.path() / "xdg";
  {
    ScopedVariable a("CARDIOLITH_GROUP_CONTAINER", nullptr), b("CARDIOLITH_DOCUMENTS_DIR", nullptr);
    ScopedVariable c("XDG_DATA_HOME", nullptr), d("HOME", home.c_str());
    const auto locations = StorageLocations::current();
    EXPECT_EQ(locations.sharedContainer, home / ".local/share/group.cardiolith");
    EXPECT_TRUE(std::filesystem::is_directory(home / ".local/share/group.cardiolith"));
    ASSERT_EQ(locations.documentDirectories.size(), 1u);
    EXPECT_EQ(locations.documentDirectories[0], home / ".local/share/cardiolith");
    EXPECT_FALSE(std::filesystem::exists(locations.documentDirectories[0]));  // never created
  }
  {
    ScopedVariable a("CARDIOLITH_GROUP_CONTAINER", nullptr), b("CARDIOLITH_DOCUMENTS_DIR", nullptr);
    ScopedVariable c("XDG_DATA_HOME", xdg.c_str()), d("HOME", home.c_str());
    const auto locations = StorageLocations::current();
    EXPECT_EQ(locations.sharedContainer, xdg / "group.cardiolith");
    EXPECT_EQ(locations.documentDirectories.at(0), xdg / "cardiolith");
  }
  {
    const auto group = root.path() / "explicit/group";
    ScopedVariable a("CARDIOLITH_GROUP_CONTAINER", group.c_str()), b("CARDIOLITH_DOCUMENTS_DIR", "/docs");
    const auto locations = StorageLocations::current();
    EXPECT_EQ(locations.sharedContainer, group);
    EXPECT_TRUE(std::filesystem::is_directory(group));
    EXPECT_EQ(locations.documentDirectories.at(0), "/docs");
  }
  {
    // A container that cannot be created (a file is in the way) is absent.
    const auto blocker = root.path() / "file";
    std::ofstream(blocker) << "x";
    const auto group = blocker / "group";
    ScopedVariable a("CARDIOLITH_GROUP_CONTAINER", group.c_str());
    EXPECT_FALSE(StorageLocations::current().sharedContainer.has_value());
  }
  {
    ScopedVariable a("CARDIOLITH_GROUP_CONTAINER", nullptr), b("CARDIOLITH_DOCUMENTS_DIR", nullptr);
    ScopedVariable c("XDG_DATA_HOME", nullptr), d("HOME", nullptr);
    const auto locations = StorageLocations::current();
    EXPECT_FALSE(locations.sharedContainer.has_value());
    EXPECT_TRUE(locations.documentDirectories.empty());
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
  const auto info = allInfoString(fileError);
  EXPECT_NE(info.find("std::filesystem::__cxx11::filesystem_error"), std::string::npos) << info;
  EXPECT_NE(info.find("/a/readings"), std::string::npos);
  EXPECT_NE(info.find("/b/readings"), std::string::npos);
  EXPECT_NE(info.find("error " + std::to_string(EEXIST)), std::string::npos);

  try {
    try {
      throw std::runtime_error("inner");
    } catch (...) {
      std::throw_with_nested(std::logic_error("outer"));
    }
  } catch (const std::exception& error) {
    const auto nested = allInfoString(error);
    EXPECT_NE(nested.find("outer"), std::string::npos);
    EXPECT_NE(nested.find("caused by std::runtime_error: inner"), std::string::npos) << nested;
  }
}

TEST(OstrelAnalyticsLoggerTest, ForwardsToTheInstalledBackendAndRestoresTheSilentOne) {
  struct Recorder : AnalyticsBackend {
    std::vector<std::string> calls;
    void logEvent(const std::string& name, const std::optional<AnalyticsParameters>&) override { calls.push_back(name); }
    void updateUserProperties(const std::optional<AnalyticsParameters>&) override { calls.push_back("properties"); }
    void loggedAssertionFailure(const std::optional<std::string>& message, std::string_view, std::string_view,
                                int line) override {
      calls.push_back(message.value_or("") + "@" + std::to_string(line));
    }
  };
  auto recorder = std::make_shared<Recorder>();
  auto& analytics = OstrelAnalyticsLogger::shared();
  analytics.setBackend(recorder);
  analytics.logEvent("opened", std::nullopt);
  analytics.updateUserProperties(AnalyticsParameters{});
  analytics.loggedAssertionFailure("bad", "file.cpp", "init()", 42);
  analytics.setBackend(nullptr);
  analytics.logEvent("dropped", std::nullopt);
  EXPECT_EQ(recorder->calls, (std::vector<std::string>{"opened", "properties", "bad@42"}));
}

}  // namespace
}  // namespace cardiolith
