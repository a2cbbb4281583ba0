#pragma once

#include <cstdint>
#include <vector>

#include "cardiolith/export.hpp"
#include "cardiolith/model/reading.hpp"

namespace cardiolith {

// The readings dated from `from` to `to`, both included, in input order (shared, not copied).
[[nodiscard]] CARDIOLITH_EXPORT ReadingList filtered(const ReadingList& readings, Date from, Date to);

// The field that `of` names of every reading, in input order.
[[nodiscard]] CARDIOLITH_EXPORT std::vector<std::int64_t> getAllValues(const ReadingList& readings,
                                                                       Reading::ValueType of);

}  // namespace cardiolith
