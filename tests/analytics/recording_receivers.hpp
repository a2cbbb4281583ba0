#pragma once

// Receivers for the event logger's tests: a backend and sinks that write every delivery they get, as one
// line of text, into a journal shared by all of them, so that one list shows the order across receivers.

#include <any>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cardiolith/analytics/sub_event_logger.hpp"
#include "cardiolith/platform/analytics_backend.hpp"

namespace cardiolith::testing {

// "{a=1, b=text}" for the value types the tests use; "absent" for no map.
std::string describe(const std::optional<AnalyticsParameters>& parameters);

// A thread-safe, ordered list of lines.
class Journal {
 public:
  void add(std::string line);
  std::vector<std::string> lines() const;
  // True once `line` has been added; false after a generous bound, so that a lost delivery fails the test
  // instead of hanging it.
  [[nodiscard]] bool waitFor(const std::string& line) const;

 private:
  mutable std::mutex mutex_;
  mutable std::condition_variable added_;
  std::vector<std::string> lines_;
};

// Writes "<label> event <name> <parameters>" and "<label> properties <properties>".
class RecordingBackend : public AnalyticsBackend {
 public:
  RecordingBackend(std::shared_ptr<Journal> journal, std::string label = "library")
      : journal_(std::move(journal)), label_(std::move(label)) {}
  void logEvent(const std::string& name, const std::optional<AnalyticsParameters>& params) override;
  void updateUserProperties(const std::optional<AnalyticsParameters>& properties) override;
  void loggedAssertionFailure(const std::optional<std::string>&, std::string_view, std::string_view,
                              int) override {}

 private:
  std::shared_ptr<Journal> journal_;
  std::string label_;
};

class RecordingSink : public SubEventLogger {
 public:
  RecordingSink(std::shared_ptr<Journal> journal, std::string label)
      : journal_(std::move(journal)), label_(std::move(label)) {}
  void log(const std::string& name, const std::optional<AnalyticsParameters>& parameters) override;
  void updateUserProperties(const AnalyticsParameters& properties) override;

 private:
  std::shared_ptr<Journal> journal_;
  std::string label_;
};

// Journal lines as the receivers write them.
std::string eventLine(const std::string& label, const std::string& name,
                      const std::optional<AnalyticsParameters>& parameters = std::nullopt);
std::string propertiesLine(const std::string& label, const AnalyticsParameters& properties);

}  // namespace cardiolith::testing
