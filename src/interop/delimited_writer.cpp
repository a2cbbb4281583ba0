#include <algorithm>
#include <stdexcept>
#include <unordered_map>

#include "cardiolith/interop/delimited.hpp"
#include "cardiolith/platform/civil_time.hpp"
#include "interop/cell_text.hpp"

namespace cardiolith::interop {
namespace {

std::string libraryCategoryName(BloodPressureAnalysis category) {
  switch (category) {
    case BloodPressureAnalysis::low:
      return "low";
    case BloodPressureAnalysis::normal:
      return "normal";
    case BloodPressureAnalysis::elevated:
      return "elevated";
    case BloodPressureAnalysis::high:
      return "high";
    case BloodPressureAnalysis::veryHigh:
      return "veryHigh";
    case BloodPressureAnalysis::unreadable:
      break;
  }
  return "unreadable";
}

std::vector<std::string> tagTitles(const Reading& reading,
                                   const std::unordered_map<UUID, std::string>& titles) {
  std::vector<std::string> result;
  if (!reading.tagIDs()) return result;
  for (const auto& id : *reading.tagIDs()) {
    if (const auto found = titles.find(id); found != titles.end()) result.push_back(found->second);
  }
  std::sort(result.begin(), result.end());
  return result;
}

// "2025-01-12 08:12 +01:00": local time to the minute and the offset; "" outside the years 1-9999.
std::string dateCell(const LocalClock& clock, Date date) {
  const auto wallTime = clock.wallTime(date);
  std::string text;
  if (!wallTime) return text;
  text.reserve(23);
  detail::appendDayAndMinute(text, wallTime->time, ' ');
  text.push_back(' ');
  detail::appendOffset(text, wallTime->offsetSeconds);
  return text;
}

}  // namespace

void writeDelimited(std::ostream& out, const ReadingList& readings, const std::vector<Tag>& tags,
                    const DelimitedWriterOptions& options) {
  const char separator = options.separator;
  if (separator != ',' && separator != '\t')
    throw std::invalid_argument("a table is separated by commas or tabs");
  std::unordered_map<UUID, std::string> titles;
  for (const auto& tag : tags) titles.emplace(tag.id, tag.title);
  const auto categoryName = options.categoryName ? options.categoryName : libraryCategoryName;
  const LocalClock clock;

  std::string row;
  for (const auto column : detail::kOwnColumns) {
    if (!row.empty()) row.push_back(separator);
    row += column;
  }
  out << row << "\r\n";
  for (const auto& reading : readings) {
    row.clear();
    const auto cell = [&](std::string_view text) {
      detail::appendQuoted(row, detail::guardedFromFormulas(text), separator);
      row.push_back(separator);
    };
    cell(dateCell(clock, reading->date()));
    cell(std::to_string(reading->systolic()));
    cell(std::to_string(reading->diastolic()));
    cell(std::to_string(reading->pulse()));
    cell(categoryName(BloodPressureAnalyzer::result(reading->systolic(), reading->diastolic())));
    cell(detail::joinedTitles(tagTitles(*reading, titles)));
    cell(reading->notes().value_or(""));
    cell(reading->id());
    row.pop_back();
    out << row << "\r\n";
  }
}

}  // namespace cardiolith::interop
