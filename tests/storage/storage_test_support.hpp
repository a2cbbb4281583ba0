#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/fsuid.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <mutex>
#include <optional>
#include <ostream>
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

namespace cardiolith {

inline void PrintTo(const Tag& tag, std::ostream* out) {
  *out << "{" << tag.id.uuidString() << ", \"" << tag.title << "\", \"" << tag.colorHex << "\"}";
}

}  // namespace cardiolith

namespace cardiolith::testing {

namespace fs = std::filesystem;

// A fresh folder under the system's temporary folder, removed with everything in it.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string pattern = (fs::temp_directory_path() / "cardiolith-storage-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
    path_ = pattern;
    fs::permissions(path_, fs::perms::owner_all | fs::perms::group_read | fs::perms::group_exec |
                               fs::perms::others_read | fs::perms::others_exec);
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    for (auto it = fs::recursive_directory_iterator(path_, ignored); it != fs::recursive_directory_iterator();
         it.increment(ignored)) {
      if (it->is_directory(ignored))
        fs::permissions(it->path(), fs::perms::owner_all, fs::perm_options::add, ignored);
    }
    fs::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const fs::path& path() const { return path_; }

 private:
  fs::path path_;
};

struct CapturedLog {
  LogLevel level;
  std::string message;
  friend bool operator==(const CapturedLog&, const CapturedLog&) = default;
};

inline void PrintTo(const CapturedLog& log, std::ostream* out) {
  static const char* const names[] = {"debug", "info", "error", "fault"};
  *out << names[static_cast<int>(log.level)] << " \"" << log.message << "\"";
}

struct AssertionFailure {
  std::optional<std::string> message;
  std::string file;
  std::string function;
  int line;
};

// Records what reaches the analytics library.
class RecordingAnalytics final : public AnalyticsBackend {
 public:
  void logEvent(const std::string&, const std::optional<AnalyticsParameters>&) override {}
  void updateUserProperties(const std::optional<AnalyticsParameters>&) override {}
  void loggedAssertionFailure(const std::optional<std::string>& message, std::string_view file,
                              std::string_view function, int line) override {
    std::lock_guard lock(mutex_);
    failures_.push_back({message, std::string(file), std::string(function), line});
  }
  std::vector<AssertionFailure> failures() const {
    std::lock_guard lock(mutex_);
    return failures_;
  }

 private:
  mutable std::mutex mutex_;
  std::vector<AssertionFailure> failures_;
};

// Every storage test runs in its own folders with the log, the analytics backend and the launch
// arguments captured, and restores all of them afterwards.
class StorageTest : public ::testing::Test {
 protected:
  void SetUp() override {
    savedArguments_ = ProcessInfo::arguments();
    ProcessInfo::setArguments({"cardiolith_storage_tests"});
    Logger::setHandler([this](const LogRecord& record) {
      std::lock_guard lock(logMutex_);
      logs_.push_back({record.level, std::string(record.message)});
    });
    OstrelAnalyticsLogger::shared().setBackend(analytics_);
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
  StorageLocations locations() const { return StorageLocations{container(), {documents()}}; }

  std::vector<CapturedLog> logs() const {
    std::lock_guard lock(logMutex_);
    return logs_;
  }
  // The messages logged at `level`.
  std::vector<std::string> messages(LogLevel level) const {
    std::vector<std::string> found;
    for (const auto& log : logs()) {
      if (log.level == level) found.push_back(log.message);
    }
    return found;
  }
  void clearLogs() {
    std::lock_guard lock(logMutex_);
    logs_.clear();
  }

  TemporaryFolder folder_;
  std::shared_ptr<RecordingAnalytics> analytics_ = std::make_shared<RecordingAnalytics>();

 private:
  std::vector<std::string> savedArguments_;
  mutable std::mutex logMutex_;
  std::vector<CapturedLog> logs_;
};

// A document of `count` readings that tells which generation it is: the first reading's id is
// "generation-<generation>", and its values vary with the generation.
inline Readings sampleReadings(int generation, int count = 3) {
  Readings document;
  for (int i = 0; i < count; ++i) {
    const auto id = i == 0 ? "generation-" + std::to_string(generation) : "reading-" + std::to_string(i);
    std::optional<std::string> notes;
    if (i % 2 == 1) notes = "note " + std::to_string(generation) + " \"quoted\" é";
    std::optional<std::set<UUID>> tagIDs;
    if (i % 3 == 2) tagIDs = std::set<UUID>{*UUID::parse("45738A4A-865F-4470-8A22-2081AD989F44")};
    document.readings.push_back(std::make_shared<Reading>(id, Date(7.25e8 + 3600.5 * i + generation),
                                                          100 + i + generation % 50, 70 + i,
                                                          60 + generation % 30, notes, std::nullopt, tagIDs));
  }
  return document;
}

// Field by field, tag ids included (Reading's == leaves them out).
inline ::testing::AssertionResult sameReadings(const Readings& actual, const Readings& expected) {
  if (actual.readings.size() != expected.readings.size()) {
    return ::testing::AssertionFailure()
           << actual.readings.size() << " readings instead of " << expected.readings.size();
  }
  for (std::size_t i = 0; i < actual.readings.size(); ++i) {
    const Reading& a = *actual.readings[i];
    const Reading& b = *expected.readings[i];
    if (!(a == b) || a.tagIDs() != b.tagIDs()) {
      return ::testing::AssertionFailure() << "reading " << i << " differs: " << a.id() << " vs " << b.id();
    }
  }
  return ::testing::AssertionSuccess();
}

inline std::string fileContent(const fs::path& path) { return detail::readWholeFile(path); }
inline void writeFile(const fs::path& path, std::string_view bytes) { detail::writeWholeFile(path, bytes); }

// The names in `folder` that start with `prefix`.
inline std::vector<std::string> namesStartingWith(const fs::path& folder, std::string_view prefix) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (entry.path().filename().string().starts_with(prefix))
      names.push_back(entry.path().filename().string());
  }
  return names;
}

// Runs `body` on a thread whose file accesses are checked as the user "nobody", so that permissions bite
// even when the tests run as root; threads that the body starts inherit that identity. Returns false,
// without running the body, when a file can still be created in `readOnlyFolder` on such a thread.
inline bool runWithoutFileOverride(const fs::path& readOnlyFolder, const std::function<void()>& body) {
  bool permissionsBite = false;
  std::thread([&] {
    ::setfsuid(65534);  // per thread; gives up the file-permission overrides of root on this thread
    const auto probe = readOnlyFolder / "probe";
    try {
      detail::writeWholeFile(probe, "x");
      fs::remove(probe);
      return;
    } catch (const fs::filesystem_error&) {
    }
    permissionsBite = true;
    body();
  }).join();
  return permissionsBite;
}

}  // namespace cardiolith::testing
