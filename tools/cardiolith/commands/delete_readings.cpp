#include "commands/delete_readings.hpp"

#include <algorithm>
#include <memory>

#include "input/reading_id_input.hpp"
#include "render/reading_text.hpp"

namespace cardiolith::tool {

std::vector<std::string> deleteReadings(const DataFolder& folder, const std::vector<std::string>& ids) {
  ReadingsLog log(folder, ReadingsLog::Access::change);
  auto& readings = log.readings();
  std::vector<std::shared_ptr<Reading>> doomed;
  std::vector<std::string> report;
  for (const auto& id : ids) {
    const auto reading = findReadingById(readings, id);
    if (std::find(doomed.begin(), doomed.end(), reading) != doomed.end()) continue;
    doomed.push_back(reading);
    report.push_back("Deleted " + describeWithId(readings, *reading));
  }
  std::erase_if(readings, [&](const auto& reading) {
    return std::find(doomed.begin(), doomed.end(), reading) != doomed.end();
  });
  log.save();
  return report;
}

}  // namespace cardiolith::tool
