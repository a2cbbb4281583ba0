#pragma once

#include <functional>
#include <string_view>

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
class Logger {
 public:
  static constexpr std::string_view subsystemID = "org.cardiolith.core";

  // Category "default" under the library's subsystem.
  static Logger& standard();

  void debug(std::string_view message) const;
  void info(std::string_view message) const;
  void error(std::string_view message) const;
  void fault(std::string_view message) const;
  void log(LogLevel level, std::string_view message) const;

  // Replaces the process-wide handler; nullptr restores the default.
  static void setHandler(std::function<void(const LogRecord&)> handler);

 private:
  Logger(std::string_view subsystem, std::string_view category) : subsystem_(subsystem), category_(category) {}
  std::string_view subsystem_;
  std::string_view category_;
};

}  // namespace cardiolith
