#include "log/library_log.hpp"

#include <cardiolith/platform/logger.hpp>
#include <iostream>
#include <mutex>
#include <vector>

namespace cardiolith::tool {
namespace {

struct LogState {
  std::mutex mutex;
  std::vector<std::string> mutedPrefixes;
};

LogState& state() {
  static LogState instance;
  return instance;
}

bool startsWith(std::string_view text, std::string_view prefix) {
  return text.substr(0, prefix.size()) == prefix;
}

void handle(const LogRecord& record) {
  if (record.level == LogLevel::debug || record.level == LogLevel::info) return;
  auto& log = state();
  std::lock_guard lock(log.mutex);
  for (const auto& prefix : log.mutedPrefixes) {
    if (startsWith(record.message, prefix)) return;
  }
  std::cerr << "cardiolith: " << record.message << '\n';
}

}  // namespace

void LibraryLog::install() { Logger::setHandler(handle); }

void LibraryLog::mute(std::string prefix) {
  auto& log = state();
  std::lock_guard lock(log.mutex);
  log.mutedPrefixes.push_back(std::move(prefix));
}

}  // namespace cardiolith::tool
