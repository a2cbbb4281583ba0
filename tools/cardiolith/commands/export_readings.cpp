#include "commands/export_readings.hpp"

#include <algorithm>
#include <cardiolith/interop/delimited.hpp>
#include <cardiolith/interop/fhir.hpp>
#include <cardiolith/model/collection.hpp>
#include <cardiolith/model/json.hpp>
#include <sstream>

#include "log/tag_list.hpp"
#include "render/category_text.hpp"
#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

std::string exportText(const ReadingList& readings, const TagList& tags, const std::string& format) {
  if (format == "json") return json::encode(Readings{readings});
  if (format == "fhir") return interop::encodeFhirBundle(readings);
  std::ostringstream text;
  interop::writeDelimited(text, readings, tags.manager().tags(),
                          {format == "tsv" ? '\t' : ',', [](BloodPressureAnalysis category) {
                             return std::string(categoryName(category));
                           }});
  return text.str();
}

}  // namespace

ExportedReadings exportReadings(const DataFolder& folder, const PeriodOptions& options,
                                const std::string& format) {
  const Period period = choosePeriod(options, DateReader::current(), std::nullopt);
  const TagList tags(folder);
  ReadingsLog log(folder, ReadingsLog::Access::read);
  auto selection = selectReadings(log.readings(), period, options, tags);
  std::stable_sort(selection.begin(), selection.end(),
                   [](const auto& a, const auto& b) { return a->date() < b->date(); });
  try {
    return {exportText(selection, tags, format), selection.size()};
  } catch (const EncodingError& error) {
    throw ToolError(std::string("can't export the log: ") + error.what());
  }
}

}  // namespace cardiolith::tool
