#pragma once

#include <any>
#include <exception>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "cardiolith/export.hpp"

namespace cardiolith {

using AnalyticsParameters = std::map<std::string, std::any>;

// What a real analytics SDK implements; the host app plugs one in with OstrelAnalyticsLogger::setBackend.
class CARDIOLITH_EXPORT AnalyticsBackend {
 public:
  virtual ~AnalyticsBackend() = default;
  virtual void logEvent(const std::string& name, const std::optional<AnalyticsParameters>& params) = 0;
  virtual void updateUserProperties(const std::optional<AnalyticsParameters>& properties) = 0;
  virtual void loggedAssertionFailure(const std::optional<std::string>& message, std::string_view file,
                                      std::string_view function, int line) = 0;
};

// The analytics library's entry point. Forwards to the installed backend; the default records nothing.
class CARDIOLITH_EXPORT OstrelAnalyticsLogger {
 public:
  static OstrelAnalyticsLogger& shared();

  // nullptr restores the default backend. May be called from any thread.
  //
  // Threads: the backend's methods run on the thread that calls this logger, which for events is the
  // analytics delivery thread (see EventLogger), and may run on several threads at once: the backend must
  // be thread-safe. Each call takes the backend current at that moment and calls it outside any lock, so
  // after setBackend returns the old backend may still be handling a call that took it just before; the
  // shared pointer keeps it alive until that call returns.
  void setBackend(std::shared_ptr<AnalyticsBackend> backend);

  void logEvent(const std::string& name, const std::optional<AnalyticsParameters>& params);
  void updateUserProperties(const std::optional<AnalyticsParameters>& properties);
  void loggedAssertionFailure(const std::optional<std::string>& message, std::string_view file,
                              std::string_view function, int line);

 private:
  OstrelAnalyticsLogger() = default;
  [[nodiscard]] std::shared_ptr<AnalyticsBackend> backend() const;
};

// A full description of any error: its type, its message and, for filesystem errors, the paths and the
// system error code, followed by the descriptions of nested exceptions.
[[nodiscard]] CARDIOLITH_EXPORT std::string allInfoString(const std::exception& error);

// The short, user-facing description of an error (its what()).
[[nodiscard]] CARDIOLITH_EXPORT std::string localizedDescription(const std::exception& error);

}  // namespace cardiolith
