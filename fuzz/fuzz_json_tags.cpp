#include <vector>

#include "fuzz_one_input.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return cardiolith::fuzzing::fuzzOneInput<std::vector<cardiolith::Tag>>(data, size);
}
