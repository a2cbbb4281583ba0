#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/fsuid.h>
#include <sys/stat.h>

#include <filesystem>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "cardiolith/model/json.hpp"
#include "cardiolith/model/readings.hpp"
#include "cardiolith/model/tag.hpp"
#include "cardiolith/platform/analytics_backend.hpp"
#include "cardiolith/platform/logger.hpp"
#include "cardiolith/platform/process_info.hpp"
#include "cardiolith/platform/storage_locations.hpp"
#include "cardiolith/platform/string_table.hpp"
#include "platform/file_io.hpp"
#include "platform/write_faults.hpp"
#include "support/temporary_directory.hpp"

namespace cardiolith {
inline void PrintTo(const Tag& tag, std::ostream* out) {
  *out << "{" << tag.id.uuidString() << ", \"" << tag.title << "\", \"" << tag.colorHex << "\"}";
}
}  // namespace cardiolith

namespace cardiolith::testing {

namespace fs = std::filesystem;
using detail::readWholeFile;
using detail::writeWholeFile;

// Records the assertion failures that reach the analytics library as "<file> <function>: <message>".
// Only the thread that constructs a store reports one, so no lock is needed.
struct RecordingAnalytics final : AnalyticsBackend {
  void logEvent(const std::string&, const std::optional<AnalyticsParameters>&) override {}
  void updateUserProperties(const std::optional<AnalyticsParameters>&) override {}
  void loggedAssertionFailure(const std::optional<std::string>& message, std::string_view file,
                              std::string_view function, int) override {
    failures.push_back(fs::path(file).filename().string() + " " + std::string(function) + ": " +
                       message.value_or("(no message)"));
  }
  std::vector<std::string> failures;
};

// Every storage test runs in its own folders with the log, the analytics backend and the launch
// arguments captured, and restores all of them afterwards.
class StorageTest : public ::testing::Test {
 protected:
  void SetUp() override {
    savedArguments_ = ProcessInfo::arguments();
    ProcessInfo::setArguments({"cardiolith_storage_tests"});
    Logger::setHandler([this](const LogRecord& record) {
      static constexpr const char* levels[] = {"debug: ", "info: ", "error: ", "fault: "};
      std::lock_guard lock(logMutex_);
      logs_.push_back(levels[static_cast<int>(record.level)] + std::string(record.message));
    });
    OstrelAnalyticsLogger::shared().setBackend(analytics_);
    // Other users may pass through, so that runWithoutFileOverride's threads reach the container.
    fs::permissions(folder_.path(), fs::perms::group_exec | fs::perms::others_exec, fs::perm_options::add);
    fs::create_directory(container());
    fs::create_directory(documents());
  }

  void TearDown() override {
    detail::write_faults::failAfter(std::nullopt);
    StringTable::setTranslator(nullptr);
    OstrelAnalyticsLogger::shared().setBackend(nullptr);
    Logger::setHandler(nullptr);
    ProcessInfo::setArguments(savedArguments_);
  }

  fs::path container() const { return folder_.path() / "container"; }
  fs::path documents() const { return folder_.path() / "documents"; }
  fs::path readingsFile() const { return container() / "readings"; }
  fs::path tagsFile() const { return container() / "tags"; }
  StorageLocations locations() const { return StorageLocations{container(), {documents()}}; }

  // Everything logged since the start or the last clearLogs(), as "<level>: <message>".
  std::vector<std::string> logs() const {
    std::lock_guard lock(logMutex_);
    return logs_;
  }
  void clearLogs() {
    std::lock_guard lock(logMutex_);
    logs_.clear();
  }

  TemporaryDirectory folder_;
  std::shared_ptr<RecordingAnalytics> analytics_ = std::make_shared<RecordingAnalytics>();

 private:
  std::vector<std::string> savedArguments_;
  mutable std::mutex logMutex_;
  std::vector<std::string> logs_;
};

// A document of `count` readings that tells which generation it is: the first reading's id is
// "generation-<generation>", and its values vary with the generation.
inline Readings sampleReadings(int generation, int count = 3) {
  Readings document;
  for (int i = 0; i < count; ++i)
    document.readings.push_back(std::make_shared<Reading>(
        i == 0 ? "generation-" + std::to_string(generation) : "reading-" + std::to_string(i),
        Date(7.25e8 + 3600.5 * i + generation), 100 + i + generation % 50, 70 + i, 60 + generation % 30,
        "note \"" + std::to_string(generation) + "\" é", std::nullopt, std::nullopt));
  return document;
}

// The names in `folder` that start with `prefix`.
inline std::vector<std::string> namesStartingWith(const fs::path& folder, std::string_view prefix) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder))
    if (entry.path().filename().string().starts_with(prefix)) names.push_back(entry.path().filename());
  return names;
}

// Runs `body` on a thread whose file accesses are checked as the user "nobody", so that permissions bite
// even when the tests run as root; threads that the body starts inherit that identity. Returns false,
// without running the body, when a folder can still be made in `readOnlyFolder` on such a thread.
inline bool runWithoutFileOverride(const fs::path& readOnlyFolder, const std::function<void()>& body) {
  bool permissionsBite = false;
  std::thread([&] {
    ::setfsuid(65534);  // per thread; gives up the file-permission overrides of root on this thread
    permissionsBite = ::mkdir((readOnlyFolder / "probe").c_str(), 0700) != 0;
    if (permissionsBite) body();
  }).join();
  fs::remove(readOnlyFolder / "probe");
  return permissionsBite;
}

}  // namespace cardiolith::testing
