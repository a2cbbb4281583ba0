#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "json_decoding_properties.hpp"

namespace cardiolith::fuzzing {

// One libFuzzer input: a broken property aborts, so that libFuzzer keeps the input as a crash. Exceptions
// other than DecodingError are findings too; they escape and end in std::terminate.
template <class T>
int fuzzOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    checkDecoding<T>(std::string_view(reinterpret_cast<const char*>(data), size));
  } catch (const PropertyFailure& failure) {
    std::fprintf(stderr, "property failed: %s\n", failure.what());
    std::abort();
  }
  return 0;
}

}  // namespace cardiolith::fuzzing
