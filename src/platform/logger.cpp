#include "cardiolith/platform/logger.hpp"

#include <cstdio>
#include <memory>

#include "platform/thread_annotations.hpp"

namespace cardiolith {
namespace {

using Handler = std::function<void(const LogRecord&)>;

const char* levelName(LogLevel level) {
  switch (level) {
    case LogLevel::debug:
      return "debug";
    case LogLevel::info:
      return "info";
    case LogLevel::error:
      return "error";
    case LogLevel::fault:
      return "fault";
  }
  return "log";
}

void writeToStandardError(const LogRecord& record) {
  if (record.level != LogLevel::error && record.level != LogLevel::fault) return;
  std::fprintf(stderr, "[%.*s:%.*s] %s: %.*s\n", static_cast<int>(record.subsystem.size()),
               record.subsystem.data(), static_cast<int>(record.category.size()), record.category.data(),
               levelName(record.level), static_cast<int>(record.message.size()), record.message.data());
}

// The handler is swapped under a lock and called outside it, so a handler may log or replace itself.
struct HandlerSlot {
  detail::Mutex mutex;
  std::shared_ptr<const Handler> handler CARDIOLITH_GUARDED_BY(mutex);
};

// Never destroyed: work that runs during exit (analytics queued before it, static destructors) still uses it.
HandlerSlot& slot() {
  static auto* const instance = new HandlerSlot;
  return *instance;
}

}  // namespace

Logger& Logger::standard() {
  static Logger logger(subsystemID, "default");
  return logger;
}

void Logger::debug(std::string_view message) const { log(LogLevel::debug, message); }
void Logger::info(std::string_view message) const { log(LogLevel::info, message); }
void Logger::error(std::string_view message) const { log(LogLevel::error, message); }
void Logger::fault(std::string_view message) const { log(LogLevel::fault, message); }

void Logger::log(LogLevel level, std::string_view message) const {
  std::shared_ptr<const Handler> handler;
  {
    auto& current = slot();
    detail::MutexLock lock(current.mutex);
    handler = current.handler;
  }
  const LogRecord record{level, subsystem_, category_, message};
  if (handler) {
    (*handler)(record);
  } else {
    writeToStandardError(record);
  }
}

void Logger::setHandler(std::function<void(const LogRecord&)> handler) {
  auto shared = handler ? std::make_shared<const Handler>(std::move(handler)) : nullptr;
  auto& current = slot();
  detail::MutexLock lock(current.mutex);
  current.handler = std::move(shared);
}

}  // namespace cardiolith
