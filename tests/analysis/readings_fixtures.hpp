#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>

#include "cardiolith/model/reading.hpp"
#include "cardiolith/platform/date.hpp"

namespace cardiolith::testing {

// The instant of a UTC calendar date and hour.
inline Date utc(int year, unsigned month, unsigned day, int hour = 0) {
  const std::chrono::sys_seconds instant =
      std::chrono::sys_days{std::chrono::year{year} / std::chrono::month{month} / std::chrono::day{day}} +
      std::chrono::hours{hour};
  return Date::fromTimeIntervalSince1970(static_cast<double>(instant.time_since_epoch().count()));
}

// A reading with no notes, tags or health-store ids.
inline std::shared_ptr<Reading> reading(Date date, std::int64_t systolic, std::int64_t diastolic,
                                        std::int64_t pulse) {
  return std::make_shared<Reading>("reading", date, systolic, diastolic, pulse, std::nullopt, std::nullopt,
                                   std::nullopt);
}

}  // namespace cardiolith::testing
