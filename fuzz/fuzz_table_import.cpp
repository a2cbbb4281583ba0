// Any bytes read as a table: no crash, and every reading the reader finds survives the tool's own table,
// written and read back, with its values, notes and minute.
#include <cstdlib>
#include <sstream>

#include "cardiolith/interop/delimited.hpp"
#include "import_properties.hpp"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  ::setenv("TZ", "UTC", 1);  // local dates are written to the minute; a zone of seconds would not round-trip
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace cardiolith;
  std::istringstream in(std::string(reinterpret_cast<const char*>(data), size));
  const auto readings = fuzzing::readingsOf([&] { return interop::readDelimited(in, {}); });
  if (readings.empty()) return 0;
  std::ostringstream table;
  interop::writeDelimited(table, readings, {}, {});
  std::istringstream back(table.str());
  const auto again = fuzzing::readingsOf([&] { return interop::readDelimited(back, {}); });
  fuzzing::expectSameReadings(readings, again, 60.0, table.str());
  return 0;
}
