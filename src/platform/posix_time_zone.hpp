#pragma once

#include <unicode/timezone.h>

#include <memory>
#include <string_view>

namespace cardiolith::detail {

// The zone that a POSIX TZ rule names, such as "CET-1CEST,M3.5.0,M10.5.0/3" or "<+0545>-5:45": standard
// and summer offsets, with the change dates as "Mm.w.d" (the d-th weekday of week w of month m, week 5
// being the last) or "Jn" (day n of a year without 29 February), at a local time (02:00 when left out).
// A summer-time name without rules takes the US rules, as the C library does. Nothing for any other text,
// including zone names such as "Europe/Berlin", which ICU knows itself. ICU reads only those names from
// TZ, and falls back to UTC for a rule, where every C library function follows it.
std::unique_ptr<icu::TimeZone> timeZoneFromPosixRule(std::string_view rule);

}  // namespace cardiolith::detail
