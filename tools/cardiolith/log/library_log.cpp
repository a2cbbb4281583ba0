#include "log/library_log.hpp"

#include <cardiolith/platform/logger.hpp>
#include <iostream>
#include <mutex>
#include <vector>

#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

struct LogState {
  std::mutex mutex;
  std::vector<std::string> mutedPrefixes;
  std::vector<std::string> errors;  // for naming a failure's reason, never for detecting it
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
  log.errors.emplace_back(record.message);
  for (const auto& prefix : log.mutedPrefixes) {
    if (startsWith(record.message, prefix)) return;
  }
  std::cerr << "cardiolith: " << fileErrorReason(std::string(record.message)) << '\n';
}

}  // namespace

void LibraryLog::install() { Logger::setHandler(handle); }

void LibraryLog::mute(std::string prefix) {
  auto& log = state();
  std::lock_guard lock(log.mutex);
  log.mutedPrefixes.push_back(std::move(prefix));
}

std::optional<std::string> LibraryLog::firstLogged(std::string_view prefix) {
  auto& log = state();
  std::lock_guard lock(log.mutex);
  for (const auto& message : log.errors) {
    if (startsWith(message, prefix)) return message;
  }
  return std::nullopt;
}

}  // namespace cardiolith::tool
