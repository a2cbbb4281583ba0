#include "cardiolith/model/reading_lookup.hpp"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace cardiolith {
namespace {

char foldASCII(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

std::size_t commonPrefixLength(std::string_view a, std::string_view b) {
  std::size_t length = 0;
  while (length < a.size() && length < b.size() && foldASCII(a[length]) == foldASCII(b[length])) ++length;
  return length;
}

bool startsWithIgnoringCase(std::string_view text, std::string_view prefix) {
  return prefix.size() <= text.size() && commonPrefixLength(text, prefix) == prefix.size();
}

double minuteOf(Date date) { return std::floor(date.timeIntervalSinceReferenceDate() / 60.0); }

}  // namespace

std::vector<std::string> shortestUniqueIdPrefixes(const ReadingList& readings, std::size_t minimumLength) {
  // In sorted order an id shares its longest prefix with one of its neighbours.
  std::vector<std::size_t> order(readings.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  const auto folded = [&](std::size_t index) {
    std::string id = readings[index]->id();
    std::transform(id.begin(), id.end(), id.begin(), foldASCII);
    return id;
  };
  std::vector<std::string> keys(readings.size());
  for (std::size_t i = 0; i < readings.size(); ++i) keys[i] = folded(i);
  std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return keys[a] < keys[b]; });

  std::vector<std::string> prefixes(readings.size());
  for (std::size_t position = 0; position < order.size(); ++position) {
    const std::string& id = readings[order[position]]->id();
    std::size_t needed = minimumLength;
    for (const std::size_t neighbour : {position - 1, position + 1}) {
      if (neighbour >= order.size()) continue;  // position - 1 wraps around at the first id
      needed = std::max(needed, commonPrefixLength(id, readings[order[neighbour]]->id()) + 1);
    }
    prefixes[order[position]] = id.substr(0, std::min(needed, id.size()));
  }
  return prefixes;
}

ReadingList readingsWithIdPrefix(const ReadingList& readings, std::string_view prefix) {
  ReadingList exact, matches;
  for (const auto& reading : readings) {
    if (!startsWithIgnoringCase(reading->id(), prefix)) continue;
    matches.push_back(reading);
    if (reading->id().size() == prefix.size()) exact.push_back(reading);
  }
  return exact.empty() ? matches : exact;
}

std::shared_ptr<Reading> findDuplicate(const ReadingList& readings, const Reading& candidate) {
  const double minute = minuteOf(candidate.date());
  for (const auto& reading : readings) {
    if (reading.get() == &candidate) continue;
    if (minuteOf(reading->date()) == minute && reading->systolic() == candidate.systolic() &&
        reading->diastolic() == candidate.diastolic() && reading->pulse() == candidate.pulse())
      return reading;
  }
  return nullptr;
}

}  // namespace cardiolith
