#pragma once

#include <cstddef>
#include <string>

#include "cardiolith/model/readings.hpp"

namespace cardiolith::json_detail {

// How many bytes past the end of its input the document decoder may read. A buffer whose capacity leaves
// this much spare is decoded where it is, without a padded copy: for a large log that copy would be one
// more file-sized block of memory at the peak of a load.
inline constexpr std::size_t kReadPadding = 64;

// json::decode<Readings> of the whole string, reading it in place when its capacity allows.
Readings decodeReadingsInPlace(const std::string& text);

}  // namespace cardiolith::json_detail
