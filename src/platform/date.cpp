#include "cardiolith/platform/date.hpp"

#include <chrono>

#include "cardiolith/platform/calendar.hpp"

namespace cardiolith {

Date Date::now() {
  const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
  return fromTimeIntervalSince1970(std::chrono::duration<double>(sinceEpoch).count());
}

Date Date::addingDays(std::int64_t days) const {
  return Calendar::current().dateByAddingDays(days, *this).value_or(*this);
}

}  // namespace cardiolith
