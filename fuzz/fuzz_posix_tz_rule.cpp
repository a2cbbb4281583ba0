// The POSIX TZ rule reader: any text either is refused or gives a zone whose offsets are those of a clock
// on Earth, at every instant probed.

#include <cstdint>
#include <string_view>

#include "fuzz_one_input.hpp"
#include "platform/posix_time_zone.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return cardiolith::fuzzing::fuzzOneInput(data, size, [](std::string_view rule) {
    const auto zone = cardiolith::detail::timeZoneFromPosixRule(rule);
    if (!zone) return;
    for (const double unixSeconds : {-2e9, 0.0, 1.7e9, 1.79e9, 4e9}) {
      int32_t raw = 0, summer = 0;
      UErrorCode status = U_ZERO_ERROR;
      zone->getOffset(unixSeconds * 1000, false, raw, summer, status);
      constexpr int32_t limit = 26 * 3600 * 1000;
      cardiolith::fuzzing::require(U_SUCCESS(status) && raw + summer <= limit && raw + summer >= -limit,
                                   "the offset is that of a clock on Earth");
    }
  });
}
