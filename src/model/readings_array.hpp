#pragma once

#include <string_view>

#include "cardiolith/model/reading.hpp"
#include "model/json_path.hpp"
#include "model/json_reader.hpp"
#include "model/reading_arena.hpp"

namespace cardiolith::json_detail {

// The key of the readings document's one member.
inline constexpr std::string_view kReadingsKey = "readings";

// Reads `array`, the array of readings at `path`, appending each reading to `list` and placing it in
// `arena`. Elements are numbered on from list's size, so that a document read in parts names the same
// element as one read whole.
void appendReadings(JsonReader& reader, ReadingArena& arena, ondemand::array& array, const JsonPath& path,
                    ReadingList& list);

}  // namespace cardiolith::json_detail
