#include "json_decoding_properties.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return cardiolith::fuzzing::fuzzOneInput(data, size,
                                           cardiolith::fuzzing::checkDecoding<cardiolith::Readings>);
}
