#pragma once

#include <cardiolith/model/reading.hpp>
#include <memory>
#include <string>
#include <string_view>

namespace cardiolith::tool {

// The fewest characters of an id that anyone may type: shorter prefixes would soon become ambiguous.
inline constexpr std::size_t minimumIdPrefix = 4;

// The reading that a typed id names: a unique prefix of its id of at least four characters, or the whole
// id, in either letter case. ToolError for a prefix that is too short, matches nothing, or matches several
// readings (listing them, with the short ids that tell them apart).
std::shared_ptr<Reading> findReadingById(const ReadingList& readings, std::string_view typed);

// The reading's short id in this log: the first 8 characters of its id, more where needed to be unique.
std::string shortIdIn(const ReadingList& readings, const Reading& reading);

}  // namespace cardiolith::tool
