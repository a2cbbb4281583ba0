#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "cardiolith/export.hpp"

namespace cardiolith {

// The values a person's measurement can plausibly take, inclusive: systolic 40-300 mmHg, diastolic 20-200
// mmHg and below the systolic, pulse 20-250 beats per minute. Anything else is almost always a typing or
// reading slip (a missing or extra digit, swapped numbers) rather than a real measurement.
//
// Why a measurement can't be a real one, one sentence per problem in the order systolic, diastolic, pulse,
// then the order of the pressures ("the systolic pressure 301 is outside 40-300 mmHg"); empty when it is
// plausible. Pure, callable from any thread.
[[nodiscard]] CARDIOLITH_EXPORT std::vector<std::string> implausibilities(std::int64_t systolic,
                                                                          std::int64_t diastolic,
                                                                          std::int64_t pulse);

// True for a pressure pair in the hypertensive-crisis range: systolic 180 mmHg or more, or diastolic 120
// mmHg or more. Such a reading calls for measuring again after a few minutes and, if it stays this high,
// for medical help, whatever the category table says. Pure, constexpr.
[[nodiscard]] constexpr bool isHypertensiveCrisis(std::int64_t systolic, std::int64_t diastolic) {
  return systolic >= 180 || diastolic >= 120;
}

}  // namespace cardiolith
