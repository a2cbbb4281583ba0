#pragma once

#include <functional>
#include <string_view>

#include "cardiolith/export.hpp"

namespace cardiolith {

enum class LogLevel { debug, info, error, fault };

// One diagnostic message; the views are valid only during the handler's call.
struct LogRecord {
  LogLevel level;
  std::string_view subsystem;
  std::string_view category;
  std::string_view message;
};

// The library's diagnostic log channel. Records go synchronously, on the logging thread, to one
// process-wide handler; the default handler writes error and above to standard error.
class CARDIOLITH_EXPORT Logger {
 public:
  static constexpr std::string_view subsystemID = "org.cardiolith.core";

  // Category "default" under the library's subsystem.
  static Logger& standard();

  void debug(std::string_view message) const;
  void info(std::string_view message) const;
  void error(std::string_view message) const;
  void fault(std::string_view message) const;
  void log(LogLevel level, std::string_view message) const;

  // Replaces the process-wide handler; nullptr restores the default. May be called from any thread, also
  // from inside the handler.
  //
  // Threads: the handler runs on whichever thread logs, which is often one of the library's background
  // threads (the stores' and the tags manager's saves and loads, analytics delivery), and on several of
  // them at once: it must be thread-safe. Each record takes the handler current at that moment and calls
  // it outside any lock, so after setHandler returns the old handler may still be running for a record
  // that took it just before; it is kept alive until that call returns. A handler that must not be called
  // once replaced has to check a flag of its own.
  static void setHandler(std::function<void(const LogRecord&)> handler);

 private:
  Logger(std::string_view subsystem, std::string_view category)
      : subsystem_(subsystem), category_(category) {}
  std::string_view subsystem_;
  std::string_view category_;
};

}  // namespace cardiolith
