// A reading as one table row or one separated line, for export and sharing.
#include <string>
#include <string_view>
#include <vector>

#include "cardiolith/model/reading.hpp"
#include "cardiolith/platform/date_formatter.hpp"
#include "cardiolith/platform/list_formatter.hpp"
#include "cardiolith/platform/text.hpp"
#include "cardiolith/storage/tags_manager.hpp"

namespace cardiolith {

std::vector<std::string> Reading::inArrayFormat(const DateFormatter& dateFormatter,
                                                const ListFormatter& listFormatter,
                                                const TagsManager& tagManager, bool includeTags,
                                                bool includeNotes) const {
  std::vector<std::string> cells;
  cells.reserve(6);
  cells.push_back(dateFormatter.string(date_));
  cells.push_back(std::to_string(systolic_));
  cells.push_back(std::to_string(diastolic_));
  cells.push_back(std::to_string(pulse_));
  if (includeTags && tagIDs_) {
    // The formatter is asked even when no tag is known; only its nothing leaves the cell out.
    std::vector<std::string> titles;
    for (auto& tag : tagManager.tags(*tagIDs_)) titles.push_back(std::move(tag.title));
    if (auto list = listFormatter.string(titles)) cells.push_back(std::move(*list));
  }
  if (includeNotes && notes_) cells.push_back(*notes_);
  return cells;
}

std::string Reading::inLineFormat(const DateFormatter& dateFormatter, const ListFormatter& listFormatter,
                                  const TagsManager& tagManager, std::string_view separator, bool includeTags,
                                  bool includeNotes) const {
  std::string line;
  bool first = true;
  for (const auto& cell :
       inArrayFormat(dateFormatter, listFormatter, tagManager, includeTags, includeNotes)) {
    if (!first) line.append(separator);
    first = false;
    // A separator inside a cell would split it; it becomes a space instead, also when it is written with
    // other but canonically equivalent code points.
    line.append(text::replacingOccurrences(cell, separator, " "));
  }
  return line;
}

}  // namespace cardiolith
