#include <stdexcept>
#include <string>

#include "cardiolith/analytics/event_logger.hpp"

namespace cardiolith {

std::string_view EventLogger::analyticsName(Placement placement) {
  switch (placement) {
    case Placement::onboarding:
      return "onboarding";
    case Placement::settings:
      return "settings";
    case Placement::trends:
      return "trends";
  }
  // Only a value cast from an integer outside the enumeration gets here.
  throw std::invalid_argument("EventLogger::Placement has no case " +
                              std::to_string(static_cast<int>(placement)));
}

}  // namespace cardiolith
