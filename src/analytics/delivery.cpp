#include "analytics/delivery.hpp"

#include <cstddef>
#include <exception>

#include "cardiolith/platform/logger.hpp"

namespace cardiolith::detail {
namespace {

// What the exception being handled says about itself. Only called inside a catch block.
std::string currentExceptionDescription() {
  try {
    throw;
  } catch (const std::exception& error) {
    return error.what();
  } catch (...) {
    return "an exception not derived from std::exception";
  }
}

// The receiver of one call: the analytics library, or the sink at an index of the snapshot.
std::string receiverDescription(std::optional<std::size_t> sinkIndex) {
  return sinkIndex ? "Analytics sink at index " + std::to_string(*sinkIndex) : "Analytics library";
}

// Runs one receiver's call; an exception ends that call only, after being logged with the receiver and
// the delivery it failed on. The texts are built only when something failed.
template <class Call>
void callGuarded(Call&& call, std::optional<std::size_t> sinkIndex, const std::string* eventName) {
  try {
    call();
  } catch (...) {
    const std::string delivery = eventName ? "event \"" + *eventName + "\"" : "user properties update";
    Logger::standard().error(receiverDescription(sinkIndex) + " failed on " + delivery + ": " +
                             currentExceptionDescription());
  }
}

}  // namespace

AnalyticsParameters libraryParameters(const AnalyticsParameters& parameters) {
  AnalyticsParameters converted;
  for (const auto& [key, value] : parameters) converted.emplace_hint(converted.end(), key, value);
  return converted;
}

void deliverEvent(const std::string& name, const std::optional<AnalyticsParameters>& parameters,
                  const SubEventLoggerList& sinks) {
  callGuarded(
      [&] {
        std::optional<AnalyticsParameters> converted;
        if (parameters) converted = libraryParameters(*parameters);
        OstrelAnalyticsLogger::shared().logEvent(name, converted);
      },
      std::nullopt, &name);
  for (std::size_t index = 0; index < sinks.size(); ++index) {
    callGuarded([&] { sinks[index]->log(name, parameters); }, index, &name);
  }
}

void deliverUserProperties(const AnalyticsParameters& properties, const SubEventLoggerList& sinks) {
  callGuarded([&] { OstrelAnalyticsLogger::shared().updateUserProperties(libraryParameters(properties)); },
              std::nullopt, nullptr);
  for (std::size_t index = 0; index < sinks.size(); ++index) {
    callGuarded([&] { sinks[index]->updateUserProperties(properties); }, index, nullptr);
  }
}

}  // namespace cardiolith::detail
