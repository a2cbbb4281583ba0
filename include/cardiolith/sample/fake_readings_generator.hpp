#pragma once

#include <cstdint>
#include <optional>

#include "cardiolith/export.hpp"
#include "cardiolith/model/reading.hpp"

namespace cardiolith {

struct CARDIOLITH_EXPORT FakeReadingsGenerator {
  // count + 1 readings, newest first, exactly 86,400 seconds apart ending at endDate, with random values
  // (systolic 70-199, diastolic 40-124, pulse 20-199; with a variance V: 120-V..119, 80-V..79, 80-V..79),
  // tags picked from a fresh TagsManager's list on even indices and on multiples of 3, and a
  // Lorem::sentence as notes when asked. A negative count or a variance below 1 throws
  // std::invalid_argument; a count whose readings could not be held (in a std::vector, or in the machine's
  // memory, RAM and swap together) throws std::length_error naming this function and the count, before any
  // reading is made.
  [[nodiscard]] static ReadingList generateFakeReadings(std::int64_t count, Date endDate,
                                                        std::optional<std::int64_t> rangeVariance,
                                                        bool includeNotes);
};

}  // namespace cardiolith
