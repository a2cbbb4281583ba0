#pragma once

#include <cstdint>
#include <string>

#include "cardiolith/export.hpp"
#include "cardiolith/sample/ranges.hpp"

namespace cardiolith {

// Filler text of pseudo-Latin words drawn uniformly from a fixed list of 249 entries, with the system
// random source. The range forms draw the count uniformly from the range first.
//
// A negative count, an empty half-open range, a closed range whose upper bound is below its lower bound,
// or a range with a negative lower bound (the closed range of every int64 included) throws
// std::invalid_argument saying what was wrong, whatever the draw would have given. A count, given or
// drawn, too large for the text to fit in one std::string even with the shortest pieces (within the
// string's maximum size and the machine's memory, RAM and swap together) throws std::length_error, naming
// the operation and the count, before anything is built.
struct CARDIOLITH_EXPORT Lorem {
  [[nodiscard]] static std::string word();
  [[nodiscard]] static std::string words(std::int64_t count);
  [[nodiscard]] static std::string words(HalfOpenRange range);
  [[nodiscard]] static std::string words(ClosedRange range);
  // A capitalised run of 4 to 16 words ending in ".".
  [[nodiscard]] static std::string sentence();
  [[nodiscard]] static std::string sentences(std::int64_t count);
  [[nodiscard]] static std::string sentences(HalfOpenRange range);
  [[nodiscard]] static std::string sentences(ClosedRange range);
  // 3 to 9 sentences joined by single spaces.
  [[nodiscard]] static std::string paragraph();
  // Paragraphs joined by a blank line.
  [[nodiscard]] static std::string paragraphs(std::int64_t count);
  [[nodiscard]] static std::string paragraphs(HalfOpenRange range);
  [[nodiscard]] static std::string paragraphs(ClosedRange range);
};

}  // namespace cardiolith
