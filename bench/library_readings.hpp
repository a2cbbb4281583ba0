#pragma once

#include <cstddef>
#include <vector>

#include "cardiolith/model/readings.hpp"
#include "plain_reading.hpp"

namespace cardiolith::bench {

// The library's record of a generated log, built through the public constructor.
Readings toLibraryReadings(const std::vector<PlainReading>& readings);
PlainReading toPlainReading(const Reading& reading);

// toLibraryReadings of the generated log of this size, built once per process on first use.
const Readings& libraryReadings(std::size_t readingCount);

}  // namespace cardiolith::bench
