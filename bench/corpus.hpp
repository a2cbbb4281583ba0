#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "plain_reading.hpp"

namespace cardiolith::bench {

inline constexpr std::array<std::size_t, 4> kDocumentSizes{1'000, 10'000, 100'000, 1'000'000};

// A generated log and its document text, both made once per process and size on first use, so that the
// largest document is built once and not for every benchmark that reads it.
struct Corpus {
  std::vector<PlainReading> readings;
  std::string text;
};

const Corpus& corpus(std::size_t readingCount);

}  // namespace cardiolith::bench
