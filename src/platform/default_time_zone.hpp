#pragma once

#include <unicode/timezone.h>

#include <memory>

namespace cardiolith::detail {

// ICU's default time zone as it is now. ICU reads the TZ environment variable once and caches the zone;
// a later change of TZ is noticed here and the default is detected from the host again. A TZ that holds a
// POSIX rule ("CET-1CEST,M3.5.0,M10.5.0/3"), which ICU would read as UTC, gives the zone the rule describes.
// A zone installed with icu::TimeZone::adoptDefault stays in force until TZ changes.
std::unique_ptr<icu::TimeZone> currentDefaultTimeZone();

}  // namespace cardiolith::detail
