#include "platform/random.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <stdexcept>

namespace cardiolith::detail::random {
namespace {

TEST(RandomTest, UniformBelowStaysInRangeAndReachesEveryValue) {
  for (const std::uint64_t n : {1u, 2u, 3u, 7u, 249u}) {
    std::array<int, 249> counts{};
    for (int i = 0; i < 20000; ++i) {
      const auto value = uniformBelow(n);
      ASSERT_LT(value, n);
      ++counts[value];
    }
    for (std::uint64_t v = 0; v < n; ++v) EXPECT_GT(counts[v], 0) << "n=" << n << " value " << v;
  }
  EXPECT_THROW(uniformBelow(0), std::invalid_argument);
}

TEST(RandomTest, LargeBoundsAreUnbiased) {
  // With n = 3 * 2^62 a modulo draw would put half of all values below 2^62; the rejection keeps a third.
  const std::uint64_t n = 3ULL << 62;
  int low = 0;
  const int draws = 30000;
  for (int i = 0; i < draws; ++i) low += uniformBelow(n) < (1ULL << 62) ? 1 : 0;
  // Expected 10000, standard deviation about 82: 9000..11000 is more than 12 deviations wide.
  EXPECT_GT(low, 9000);
  EXPECT_LT(low, 11000);
}

}  // namespace
}  // namespace cardiolith::detail::random
