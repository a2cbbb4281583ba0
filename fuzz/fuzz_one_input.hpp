#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string_view>

namespace cardiolith::fuzzing {

// A property that an input broke.
struct PropertyFailure : std::logic_error {
  using std::logic_error::logic_error;
};

// Throws PropertyFailure naming `property` unless it holds.
inline void require(bool holds, const char* property) {
  if (!holds) throw PropertyFailure(property);
}

// Gives one libFuzzer input to `check` as text. A broken property aborts, printing what broke, so that
// libFuzzer keeps the input as a crash; any other exception escapes and ends in std::terminate, a finding
// too.
template <class Check>
int fuzzOneInput(const std::uint8_t* data, std::size_t size, const Check& check) {
  try {
    check(std::string_view(reinterpret_cast<const char*>(data), size));
  } catch (const PropertyFailure& failure) {
    std::fprintf(stderr, "property failed: %s\n", failure.what());
    std::abort();
  }
  return 0;
}

}  // namespace cardiolith::fuzzing
