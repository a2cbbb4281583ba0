#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "plain_reading.hpp"

namespace cardiolith::bench {

// Midnight UTC of 2025-03-08, in seconds since 2001-01-01: the day the generated logs end on.
inline constexpr double kNewestDay = 763084800.0;
inline constexpr double kSecondsPerDay = 86400.0;
inline constexpr std::uint64_t kDefaultSeed = 0x5EED'CA4D'1011'7ULL;

// A realistic log of `count` readings, newest first: one to three readings a day going back from
// kNewestDay, at morning, midday and evening times with sub-second fractions; about 40% carry notes of 2
// to 20 words (commas, quotes, slashes, line breaks, accented letters, emoji), about 60% one to three of
// the ten default tag ids, about 20% health-store ids. The same seed gives the same log with every
// standard library: only std::mt19937_64 draws are used, never the unspecified std:: distributions.
std::vector<PlainReading> generateReadings(std::size_t count, std::uint64_t seed = kDefaultSeed);

// The ids of the ten default tags, the pool that generated readings take their tags from.
const std::vector<UuidBytes>& defaultTagIDs();

}  // namespace cardiolith::bench
