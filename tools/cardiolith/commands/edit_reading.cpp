#include "commands/edit_reading.hpp"

#include <algorithm>
#include <cardiolith/analysis/plausibility.hpp>
#include <cardiolith/platform/text.hpp>
#include <set>

#include "input/reading_id_input.hpp"
#include "log/tag_list.hpp"
#include "render/reading_text.hpp"
#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

std::optional<std::set<UUID>> editedTags(const Reading& old, const ReadingEdit& edit,
                                         const std::optional<TagList>& tagList) {
  if (!tagList) return old.tagIDs();
  auto ids = old.tagIDs().value_or(std::set<UUID>{});
  for (const auto& title : edit.tags) ids.insert(tagList->find(title).id);
  for (const auto& title : edit.untags) ids.erase(tagList->find(title).id);
  return ids;
}

// The reading as edited: a new record with the old id, so the health-store ids and every reference stay.
std::shared_ptr<Reading> edited(const Reading& old, const ReadingEdit& edit,
                                const std::optional<TagList>& tagList) {
  const std::int64_t systolic = edit.systolic.value_or(old.systolic());
  const std::int64_t diastolic = edit.diastolic.value_or(old.diastolic());
  const std::int64_t pulse = edit.pulse.value_or(old.pulse());
  if (!edit.force) {
    const auto problems = implausibilities(systolic, diastolic, pulse);
    if (!problems.empty())
      throw ToolError("not changed: " + joined(problems, "; ") +
                      ".\nCheck the values, or add --force to keep them exactly as typed.");
  }
  std::optional<std::string> notes = old.notes();
  if (edit.note) notes = *edit.note;
  if (edit.removeNote) notes.reset();
  return std::make_shared<Reading>(old.id(), edit.date.value_or(old.date()), systolic, diastolic, pulse,
                                   notes, old.healthKitID(), editedTags(old, edit, tagList));
}

}  // namespace

EditedReading editReading(const DataFolder& folder, const ReadingEdit& edit) {
  if (edit.note && !text::isValidUTF8(*edit.note)) throw ToolError("--note: the text is not valid UTF-8");
  std::optional<TagList> tagList;
  if (!edit.tags.empty() || !edit.untags.empty()) tagList.emplace(folder);

  ReadingsLog log(folder, ReadingsLog::Access::change);
  auto& readings = log.readings();
  const auto old = findReadingById(readings, edit.id);
  EditedReading result;
  result.reading = edited(*old, edit, tagList);
  result.before = "Before: " + describeWithId(readings, *old);
  std::replace(readings.begin(), readings.end(), old, result.reading);
  result.after = "After:  " + describeWithId(readings, *result.reading);
  if (tagList) result.tagTitles = tagList->titles(result.reading->tagIDs());
  log.save();
  return result;
}

}  // namespace cardiolith::tool
