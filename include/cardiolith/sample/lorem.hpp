#pragma once

#include <cstdint>
#include <string>

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
struct Lorem {
  static std::string word();
  static std::string words(std::int64_t count);
  static std::string words(HalfOpenRange range);
  static std::string words(ClosedRange range);
  // A capitalised run of 4 to 16 words ending in ".".
  static std::string sentence();
  static std::string sentences(std::int64_t count);
  static std::string sentences(HalfOpenRange range);
  static std::string sentences(ClosedRange range);
  // 3 to 9 sentences joined by single spaces.
  static std::string paragraph();
  // Paragraphs joined by a blank line.
  static std::string paragraphs(std::int64_t count);
  static std::string paragraphs(HalfOpenRange range);
  static std::string paragraphs(ClosedRange range);
};

}  // namespace cardiolith
