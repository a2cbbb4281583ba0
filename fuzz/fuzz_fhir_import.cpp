// Any bytes read as FHIR: no crash, and every reading the reader finds survives the FHIR export, written and
// read back, with its values, notes and millisecond.
#include <sstream>

#include "cardiolith/interop/fhir.hpp"
#include "import_properties.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace cardiolith;
  std::istringstream in(std::string(reinterpret_cast<const char*>(data), size));
  // Blocks that cut the input in many places, for the Bundle's streaming scanner.
  const auto readings =
      fuzzing::readingsOf([&] { return interop::readFhir(in, {.blockSize = 1 + size % 97}); });
  if (readings.empty()) return 0;
  const std::string bundle = interop::encodeFhirBundle(readings);
  std::istringstream back(bundle);
  const auto again = fuzzing::readingsOf([&] { return interop::readFhir(back); });
  fuzzing::expectSameReadings(readings, again, 1e-3, bundle);
  return 0;
}
