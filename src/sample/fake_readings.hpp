#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "cardiolith/model/reading.hpp"
#include "cardiolith/model/tag.hpp"

namespace cardiolith::detail {

// The tag list to pick from, read afresh at every pick.
using TagListSource = std::function<std::vector<Tag>()>;

// FakeReadingsGenerator::generateFakeReadings with the tags taken from `currentTags` instead of a fresh
// TagsManager. The arguments are checked before `currentTags` is first called.
ReadingList generateFakeReadings(std::int64_t count, Date endDate, std::optional<std::int64_t> rangeVariance,
                                 bool includeNotes, const TagListSource& currentTags);

}  // namespace cardiolith::detail
