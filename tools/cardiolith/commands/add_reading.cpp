#include "commands/add_reading.hpp"

#include <cardiolith/analysis/plausibility.hpp>
#include <cardiolith/platform/text.hpp>
#include <cardiolith/platform/uuid.hpp>
#include <set>

#include "log/tag_list.hpp"
#include "render/reading_text.hpp"
#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

// A reading dated this far ahead of the clock is a typing slip, not a clock difference.
constexpr double futureTolerance = 5 * 60;

void refuseImplausible(const NewReading& request, Date date, Date now) {
  auto problems = implausibilities(request.systolic, request.diastolic, request.pulse);
  if (date > now.addingTimeInterval(futureTolerance)) {
    problems.push_back("the date " + displayDateFormatter().string(date) + " is in the future");
  }
  if (problems.empty()) return;
  throw ToolError("not added: " + joined(problems, "; ") +
                  ".\nCheck the reading, or add --force to keep it exactly as typed.");
}

}  // namespace

AddedReading addReading(const DataFolder& folder, const NewReading& request) {
  const Date now = Date::now();
  const Date date = request.date.value_or(now);
  if (!request.force) refuseImplausible(request, date, now);
  if (request.note && !text::isValidUTF8(*request.note))
    throw ToolError("--note: the text is not valid UTF-8");

  AddedReading added;
  std::optional<std::set<UUID>> tagIDs;
  if (!request.tags.empty()) {
    const TagList tagList(folder);
    tagIDs.emplace();
    for (const auto& title : request.tags) tagIDs->insert(tagList.find(title).id);
    added.tagTitles = tagList.titles(tagIDs);
  }
  added.reading =
      std::make_shared<Reading>(UUID::random().uuidString(), date, request.systolic, request.diastolic,
                                request.pulse, request.note, std::nullopt, tagIDs);

  ReadingsLog log(folder, ReadingsLog::Access::change);
  if (!std::filesystem::exists(log.file())) added.newLogFile = log.file();
  log.readings().push_back(added.reading);
  log.save();
  return added;
}

}  // namespace cardiolith::tool
