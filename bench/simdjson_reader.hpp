#pragma once

#include <string_view>
#include <vector>

#include "plain_reading.hpp"

namespace cardiolith::bench {

// The floor for a strict reader of the readings document: simdjson on-demand, materialising every
// reading into a PlainReading with the checks a real reader makes: JSON types, required members (a null
// one counts as missing), integers in the signed 64-bit range without fraction, UUID strings that parse,
// null optional members read as absent, unknown members ignored. Takes the text as a string_view, as a
// library decoder does, and so pays the copy into simdjson's padded buffer.
// std::runtime_error naming the element and member on the first failure.
std::vector<PlainReading> readDocumentWithSimdjson(std::string_view text);

}  // namespace cardiolith::bench
