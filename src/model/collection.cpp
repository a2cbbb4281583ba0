#include "cardiolith/model/collection.hpp"

namespace cardiolith {

ReadingList filtered(const ReadingList& readings, Date from, Date to) {
  ReadingList result;
  for (const auto& reading : readings) {
    // Two tests, each dropping only a reading that is provably outside its bound: a date that is
    // unordered with the bounds (NaN) stays in.
    if (reading->date() < from) continue;
    if (to < reading->date()) continue;
    result.push_back(reading);
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
