#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "cardiolith/platform/date.hpp"

namespace cardiolith {

// A date and clock time as written on a page, without a time zone: what a spreadsheet cell or a form holds.
struct CivilTime {
  int year = 2001;  // 1-9999
  int month = 1;    // 1-12
  int day = 1;      // 1-31
  int hour = 0;
  int minute = 0;
  double second = 0;
};

// The instant at which the default time zone's clocks (as it is at the moment of the call) show `time`;
// in a daylight-saving overlap the earlier one. Nothing when the fields name no calendar day (February 30,
// hour 25, a year outside 1-9999) or the clocks skip that time.
[[nodiscard]] std::optional<Date> localInstant(const CivilTime& time);

// The instant that `time` names in a zone `offsetSeconds` east of UTC. Nothing when the fields name no
// calendar day.
[[nodiscard]] std::optional<Date> instantAtOffset(const CivilTime& time, int offsetSeconds);

// localInstant for many times in a row, as a reader of a long file needs: the default time zone is taken
// once, at construction, and one calendar serves every call. Not safe for concurrent use.
class LocalClock {
 public:
  LocalClock();
  ~LocalClock();
  LocalClock(const LocalClock&) = delete;
  LocalClock& operator=(const LocalClock&) = delete;

  // As localInstant, in the zone the clock was made in.
  [[nodiscard]] std::optional<Date> instant(const CivilTime& time) const;

  // What the clocks of the zone show at `date`, and the zone's offset east of UTC then, in seconds.
  // Nothing outside the years 1-9999.
  struct WallTime {
    CivilTime time;
    int offsetSeconds = 0;
  };
  [[nodiscard]] std::optional<WallTime> wallTime(Date date) const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

// Reads dates with an ICU pattern ("dd.MM.yyyy", "MMM d yyyy"; English month names), strictly: the whole
// text must match. One parser may be used from several threads.
class DatePatternParser {
 public:
  // Throws std::invalid_argument naming the pattern when ICU rejects it.
  explicit DatePatternParser(std::string_view icuPattern);
  ~DatePatternParser();
  DatePatternParser(const DatePatternParser&) = delete;
  DatePatternParser& operator=(const DatePatternParser&) = delete;

  // The fields the pattern found (those it has no letter for keep their CivilTime defaults), or nothing
  // when the text does not match the pattern.
  [[nodiscard]] std::optional<CivilTime> parse(std::string_view text) const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace cardiolith
