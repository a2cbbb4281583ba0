#include "platform/random.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <stdexcept>

namespace cardiolith::detail::random {
namespace {

using ::testing::AllOf;
using ::testing::Gt;
using ::testing::Lt;

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
  // With n = 3 * 2^62 there are 4/3 draws of 64 bits per value, so a draw that is not rejected now and then
  // favours some values: a modulo puts half of all values below 2^62, a multiply-and-shift half of them on
  // multiples of 3. Unbiased, each is a third.
  const std::uint64_t n = 3ULL << 62;
  int low = 0;
  int multiplesOfThree = 0;
  for (int i = 0; i < 30000; ++i) {
    const auto value = uniformBelow(n);
    low += value < (1ULL << 62) ? 1 : 0;
    multiplesOfThree += value % 3 == 0 ? 1 : 0;
  }
  // Expected 10000 each, standard deviation about 82: 9000..11000 is more than 12 deviations wide.
  EXPECT_THAT(low, AllOf(Gt(9000), Lt(11000)));
  EXPECT_THAT(multiplesOfThree, AllOf(Gt(9000), Lt(11000)));
}

}  // namespace
}  // namespace cardiolith::detail::random
