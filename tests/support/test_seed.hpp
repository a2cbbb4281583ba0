#pragma once

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <random>
#include <string>

namespace cardiolith::testing {

// The seed of the tests' own random draws: CARDIOLITH_TEST_SEED when it is set, else a fresh one. It is
// printed at its first use, so that a failure can be replayed with CARDIOLITH_TEST_SEED=<seed>.
inline std::uint64_t testSeed() {
  static const std::uint64_t seed = [] {
    std::uint64_t value = 0;
    if (const char* given = std::getenv("CARDIOLITH_TEST_SEED")) {
      value = std::stoull(given);
    } else {
      std::random_device device;
      value = (std::uint64_t{device()} << 32) ^ device();
    }
    std::cout << "[   SEED   ] CARDIOLITH_TEST_SEED=" << value << " replays these draws" << std::endl;
    return value;
  }();
  return seed;
}

// A generator of its own for each `stream` (a thread, say), all following from testSeed().
inline std::mt19937_64 seededGenerator(std::uint64_t stream = 0) {
  std::seed_seq sequence{testSeed(), stream};
  return std::mt19937_64(sequence);
}

}  // namespace cardiolith::testing
