#pragma once

#include <any>
#include <exception>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace cardiolith {

using AnalyticsParameters = std::map<std::string, std::any>;

// What a real analytics SDK implements; the host app plugs one in with OstrelAnalyticsLogger::setBackend.
class AnalyticsBackend {
 public:
  virtual ~AnalyticsBackend() = default;
  virtual void logEvent(const std::string& name, const std::optional<AnalyticsParameters>& params) = 0;
  virtual void updateUserProperties(const std::optional<AnalyticsParameters>& properties) = 0;
  virtual void loggedAssertionFailure(const std::optional<std::string>& message, std::string_view file,
                                      std::string_view function, int line) = 0;
};

// The analytics library's entry point. Forwards to the installed backend; the default records nothing.
class OstrelAnalyticsLogger {
 public:
  static OstrelAnalyticsLogger& shared();

  // nullptr restores the default backend.
  void setBackend(std::shared_ptr<AnalyticsBackend> backend);

  void logEvent(const std::string& name, const std::optional<AnalyticsParameters>& params);
  void updateUserProperties(const std::optional<AnalyticsParameters>& properties);
  void loggedAssertionFailure(const std::optional<std::string>& message, std::string_view file,
                              std::string_view function, int line);

 private:
  OstrelAnalyticsLogger() = default;
  std::shared_ptr<AnalyticsBackend> backend() const;
};

// A full description of any error: its type, its message and, for filesystem errors, the paths and the
// system error code, followed by the descriptions of nested exceptions.
std::string allInfoString(const std::exception& error);

// The short, user-facing description of an error (its what()).
std::string localizedDescription(const std::exception& error);

}  // namespace cardiolith
