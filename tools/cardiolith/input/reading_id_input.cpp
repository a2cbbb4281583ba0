#include "input/reading_id_input.hpp"

#include <cardiolith/model/reading_lookup.hpp>

#include "render/reading_text.hpp"
#include "tool_error.hpp"

namespace cardiolith::tool {

std::shared_ptr<Reading> findReadingById(const ReadingList& readings, std::string_view typed) {
  const std::string quoted = "\"" + std::string(typed) + "\"";
  const auto matches = readingsWithIdPrefix(readings, typed);
  const bool wholeId = !matches.empty() && matches.front()->id().size() == typed.size();
  if (typed.size() < minimumIdPrefix && !wholeId) {
    throw ToolError(quoted + " is too short for an id; type at least " + std::to_string(minimumIdPrefix) +
                    " characters of the id that cardiolith list shows");
  }
  if (matches.size() == 1) return matches.front();
  if (matches.empty()) {
    throw ToolError("no reading has an id starting with " + quoted +
                    "; cardiolith list shows each reading's id in its first column");
  }
  std::string candidates;
  for (const auto& match : matches) {
    candidates += "\n  " + shortIdIn(readings, *match) + "  " + displayDateFormatter().string(match->date()) +
                  "  " + describeValues(*match);
  }
  throw ToolError(quoted + " is the start of " + std::to_string(matches.size()) +
                  " readings' ids; type more of the one you mean:" + candidates);
}

std::string shortIdIn(const ReadingList& readings, const Reading& reading) {
  const auto prefixes = shortestUniqueIdPrefixes(readings);
  for (std::size_t i = 0; i < readings.size(); ++i) {
    if (readings[i].get() == &reading) return prefixes[i];
  }
  return reading.id().substr(0, 8);
}

}  // namespace cardiolith::tool
