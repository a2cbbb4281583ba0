#include "cardiolith/model/collection.hpp"

#include "model/date_bounds.hpp"

namespace cardiolith {

ReadingList filtered(const ReadingList& readings, Date from, Date to) {
  ReadingList result;
  for (const auto& reading : readings) {
    if (detail::keptByPeriod(reading->date(), from, to)) result.push_back(reading);
  }
  return result;
}

std::vector<std::int64_t> getAllValues(const ReadingList& readings, Reading::ValueType of) {
  std::vector<std::int64_t> values;
  values.reserve(readings.size());
  for (const auto& reading : readings) values.push_back(reading->value(of));
  return values;
}

}  // namespace cardiolith
