// Any bytes read as FHIR: no crash, and every reading the reader finds survives the FHIR export, written and
// read back, with its values, notes and millisecond.
#include "cardiolith/interop/fhir.hpp"
#include "import_properties.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace cardiolith;
  return fuzzing::fuzzOneInput(data, size, [](std::string_view input) {
    // Blocks that cut the input in many places, for the Bundle's streaming scanner.
    const auto readings = fuzzing::readingsOf(
        input, [&](std::istream& in) { return interop::readFhir(in, {.blockSize = 1 + input.size() % 97}); });
    fuzzing::requireReadBack(
        readings, interop::encodeFhirBundle(readings), [](std::istream& in) { return interop::readFhir(in); },
        1e-3);
  });
}
