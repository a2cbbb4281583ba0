#include "cardiolith/interop/import_plan.hpp"

#include <cmath>

#include "cardiolith/analysis/plausibility.hpp"
#include "cardiolith/platform/text.hpp"

namespace cardiolith::interop {

ImportPlanner::ImportPlanner(const ReadingList& existing, const std::vector<Tag>& tags, ImportRules rules)
    : rules_(std::move(rules)) {
  ids_.reserve(existing.size());
  for (const auto& reading : existing) {
    ids_.insert(text::canonical(reading->id()));
    values_.insert(keyOf(*reading));
  }
  for (const auto& tag : tags) tagsByTitle_.emplace(text::canonical(tag.title), tag.id);
}

ImportPlanner::ValuesKey ImportPlanner::keyOf(const Reading& reading) {
  const double minute = std::floor(reading.date().timeIntervalSinceReferenceDate() / 60.0);
  return {std::isfinite(minute) ? static_cast<std::int64_t>(minute) : 0, reading.systolic(),
          reading.diastolic(), reading.pulse()};
}

namespace {

std::string sourced(std::string_view source, std::string position) {
  return source.empty() ? position : std::string(source) + " " + position;
}

}  // namespace

void ImportPlanner::take(ReaderItem item, std::string_view source) {
  if (auto* incoming = std::get_if<IncomingReading>(&item)) {
    takeReading(std::move(*incoming), source);
  } else if (auto* invalid = std::get_if<InvalidRow>(&item)) {
    plan_.refused.push_back({sourced(source, std::move(invalid->position)), std::move(invalid->reason)});
  } else {
    ++plan_.skipped[std::get<SkippedRecord>(item).reason];
  }
}

void ImportPlanner::takeAll(ReadingReader& reader, std::string_view source) {
  while (auto item = reader.next()) take(std::move(*item), source);
}

void ImportPlanner::takeReading(IncomingReading incoming, std::string_view source) {
  const Reading& reading = *incoming.reading;
  const std::string id = text::canonical(reading.id());
  const ValuesKey key = keyOf(reading);
  if ((!id.empty() && ids_.contains(id)) || values_.contains(key)) {
    ++plan_.alreadyThere;
    return;
  }
  if (!rules_.force) {
    const auto problems = implausibilities(reading.systolic(), reading.diastolic(), reading.pulse());
    if (!problems.empty()) {
      std::string reason;
      for (const auto& problem : problems) reason += (reason.empty() ? "" : "; ") + problem;
      plan_.refused.push_back({sourced(source, std::move(incoming.position)), reason});
      return;
    }
  }
  const auto tagIDs = tagIDsFor(incoming);
  auto added = Reading::decoded(id.empty() ? UUID::random().uuidString() : reading.id(), reading.date(),
                                reading.systolic(), reading.diastolic(), reading.pulse(), reading.notes(),
                                tagIDs, reading.healthKitID());
  // A new random id cannot meet a later one; only ids from the file need remembering.
  if (!id.empty()) ids_.insert(id);
  values_.insert(key);
  plan_.added.push_back(std::move(added));
}

std::optional<std::set<UUID>> ImportPlanner::tagIDsFor(const IncomingReading& incoming) {
  if (incoming.tagTitles.empty()) return incoming.reading->tagIDs();
  std::set<UUID> ids = incoming.reading->tagIDs().value_or(std::set<UUID>{});
  for (const auto& title : incoming.tagTitles) {
    const std::string key = text::canonical(title);
    if (const auto found = tagsByTitle_.find(key); found != tagsByTitle_.end()) {
      ids.insert(found->second);
    } else if (rules_.createTags) {
      const Tag tag{UUID::random(), title, rules_.newTagColor};
      tagsByTitle_.emplace(key, tag.id);
      plan_.newTags.push_back(tag);
      ids.insert(tag.id);
    } else {
      plan_.unknownTags.insert(title);
    }
  }
  return ids;
}

}  // namespace cardiolith::interop
