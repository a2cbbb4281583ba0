#pragma once

#include <cstdint>

namespace cardiolith {

// lower included, upper excluded.
struct HalfOpenRange {
  std::int64_t lower;
  std::int64_t upper;
};

// Both bounds included.
struct ClosedRange {
  std::int64_t lower;
  std::int64_t upper;
};

}  // namespace cardiolith
