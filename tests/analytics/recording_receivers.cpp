#include "recording_receivers.hpp"

#include <cstdint>
#include <typeinfo>

namespace cardiolith::testing {
namespace {

std::string describeValue(const std::any& value) {
  if (const auto* text = std::any_cast<std::string>(&value)) return *text;
  if (const auto* text = std::any_cast<const char*>(&value)) return *text;
  if (const auto* number = std::any_cast<int>(&value)) return std::to_string(*number);
  if (const auto* number = std::any_cast<std::int64_t>(&value)) return std::to_string(*number) + "L";
  if (const auto* number = std::any_cast<double>(&value)) return std::to_string(*number);
  if (const auto* flag = std::any_cast<bool>(&value)) return *flag ? "true" : "false";
  return std::string("<") + value.type().name() + ">";
}

}  // namespace

std::string describe(const std::optional<AnalyticsParameters>& parameters) {
  if (!parameters) return "absent";
  std::string out = "{";
  for (const auto& [key, value] : *parameters) {
    if (out.size() > 1) out += ", ";
    out += key + "=" + describeValue(value);
  }
  return out + "}";
}

void Journal::add(std::string line) {
  {
    std::lock_guard lock(mutex_);
    lines_.push_back(std::move(line));
  }
  added_.notify_all();
}

std::vector<std::string> Journal::lines() const {
  std::lock_guard lock(mutex_);
  return lines_;
}

bool Journal::waitFor(const std::string& line) const {
  std::unique_lock lock(mutex_);
  return added_.wait_for(lock, std::chrono::seconds(60), [&] {
    for (const auto& existing : lines_) {
      if (existing == line) return true;
    }
    return false;
  });
}

std::string eventLine(const std::string& label, const std::string& name,
                      const std::optional<AnalyticsParameters>& parameters) {
  return label + " event " + name + " " + describe(parameters);
}

std::string propertiesLine(const std::string& label, const AnalyticsParameters& properties) {
  return label + " properties " + describe(properties);
}

void RecordingBackend::logEvent(const std::string& name, const std::optional<AnalyticsParameters>& params) {
  journal_->add(eventLine(label_, name, params));
}

void RecordingBackend::updateUserProperties(const std::optional<AnalyticsParameters>& properties) {
  // The logger always passes a map; "absent" would show up as a mismatch in the journal.
  journal_->add(properties ? propertiesLine(label_, *properties) : label_ + " properties absent");
}

void RecordingSink::log(const std::string& name, const std::optional<AnalyticsParameters>& parameters) {
  journal_->add(eventLine(label_, name, parameters));
}

void RecordingSink::updateUserProperties(const AnalyticsParameters& properties) {
  journal_->add(propertiesLine(label_, properties));
}

}  // namespace cardiolith::testing
