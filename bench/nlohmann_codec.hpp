#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "plain_reading.hpp"

// The readings document through nlohmann/json, the common general-purpose choice, with the same strict
// checks and output form as the other readers and writers of the benchmarks.
namespace cardiolith::bench {

// std::runtime_error (or nlohmann's parse error) on the first failure.
std::vector<PlainReading> readDocumentWithNlohmann(std::string_view text);
// Members in their fixed order (an ordered object); std::invalid_argument for a non-finite date,
// nlohmann's type error for text that is not UTF-8.
std::string writeDocumentWithNlohmann(const std::vector<PlainReading>& readings);

}  // namespace cardiolith::bench
