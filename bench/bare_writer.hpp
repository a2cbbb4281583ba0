#pragma once

#include <string>
#include <vector>

#include "plain_reading.hpp"

namespace cardiolith::bench {

// The floor for writing the readings document: compact output, members in their fixed order, absent
// members left out, numbers by std::to_chars (shortest round-trip form for dates), strings escaped and
// checked for UTF-8 in one pass. It does every duty a real writer has and nothing more.
// std::invalid_argument for a non-finite date or a text that is not UTF-8.
std::string writeDocument(const std::vector<PlainReading>& readings);

}  // namespace cardiolith::bench
