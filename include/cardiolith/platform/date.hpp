#pragma once

#include <compare>
#include <cstdint>

#include "cardiolith/export.hpp"

namespace cardiolith {

// An instant: seconds since 2001-01-01 00:00:00 UTC, with fraction.
class CARDIOLITH_EXPORT Date {
 public:
  constexpr explicit Date(double timeIntervalSinceReferenceDate = 0)
      : seconds_(timeIntervalSinceReferenceDate) {}

  // Seconds between the Unix epoch and the reference date.
  static constexpr double timeIntervalBetween1970AndReferenceDate = 978307200.0;

  [[nodiscard]] static Date now();
  [[nodiscard]] static constexpr Date fromTimeIntervalSince1970(double seconds) {
    return Date(seconds - timeIntervalBetween1970AndReferenceDate);
  }

  [[nodiscard]] constexpr double timeIntervalSinceReferenceDate() const { return seconds_; }
  constexpr double timeIntervalSince1970() const {
    return seconds_ + timeIntervalBetween1970AndReferenceDate;
  }

  [[nodiscard]] Date addingTimeInterval(double seconds) const { return Date(seconds_ + seconds); }
  // Moves by whole calendar days in Calendar::current(), keeping the local clock time.
  // Returns this instant unchanged when the calendar cannot compute the result.
  [[nodiscard]] Date addingDays(std::int64_t days) const;

  friend constexpr bool operator==(const Date& a, const Date& b) { return a.seconds_ == b.seconds_; }
  friend constexpr std::partial_ordering operator<=>(const Date& a, const Date& b) {
    return a.seconds_ <=> b.seconds_;
  }

 private:
  double seconds_;
};

}  // namespace cardiolith
