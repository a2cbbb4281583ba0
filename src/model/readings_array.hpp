#pragma once

#include <memory>
#include <string>
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

// Decodes the elements of a readings document's array one at a time, each from its own text, for a reader
// that streams a document too large to hold and finds each element itself. Faults are named as the whole
// document's decoder names them ("readings[12].pulse: 1.5 is not an integer"), and a nesting depth
// counts as it would inside the document. Not thread-safe; the parser and the arena serve every element.
class ReadingElementDecoder {
 public:
  ReadingElementDecoder();

  // The reading in `text`, one JSON value, which is element `index` of the array. DecodingError when it
  // is not JSON or not a reading.
  std::shared_ptr<Reading> decode(std::string_view text, std::size_t index);

 private:
  ondemand::parser parser_;
  ReadingArena arena_;
  std::string framed_;  // "[text]", with room for the parser to read past its end
  const JsonPath rootPath_;
  const JsonPath readingsPath_ = rootPath_.member(kReadingsKey);
};

}  // namespace cardiolith::json_detail
