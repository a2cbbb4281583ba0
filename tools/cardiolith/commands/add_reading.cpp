#include "commands/add_reading.hpp"

#include <cardiolith/analysis/plausibility.hpp>
#include <cardiolith/model/reading_lookup.hpp>
#include <cardiolith/platform/text.hpp>
#include <cardiolith/platform/uuid.hpp>
#include <set>

#include "input/reading_id_input.hpp"
#include "log/tag_list.hpp"
#include "render/reading_text.hpp"
#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

void refuseImplausible(const NewReading& request) {
  const auto problems = implausibilities(request.systolic, request.diastolic, request.pulse);
  if (problems.empty()) return;
  throw ToolError("not added: " + joined(problems, "; ") +
                  ".\nCheck the reading, or add --force to keep it exactly as typed.");
}

}  // namespace

AddedReading addReading(const DataFolder& folder, const NewReading& request) {
  if (!request.force) refuseImplausible(request);
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
  added.reading = std::make_shared<Reading>(UUID::random().uuidString(), request.date.value_or(Date::now()),
                                            request.systolic, request.diastolic, request.pulse, request.note,
                                            std::nullopt, tagIDs);

  ReadingsLog log(folder, ReadingsLog::Access::change);
  if (const auto twin = request.force ? nullptr : findDuplicate(log.readings(), *added.reading)) {
    throw ToolError(
        "not added: the log already holds this reading, " + describeWithId(log.readings(), *twin) +
        ".\nAdd --force to keep both (two measurements in the same minute with the same values).");
  }
  if (!std::filesystem::exists(log.file())) added.newLogFile = log.file();
  log.readings().push_back(added.reading);
  added.shortId = shortIdIn(log.readings(), *added.reading);
  log.save();
  return added;
}

}  // namespace cardiolith::tool
