#include "cardiolith/analytics/sub_event_logger.hpp"

namespace cardiolith {

// Out of line so that the vtable is emitted once, in the library.
SubEventLogger::~SubEventLogger() = default;

}  // namespace cardiolith
