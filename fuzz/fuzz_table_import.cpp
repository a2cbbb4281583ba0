// Any bytes read as a table: no crash, and every reading the reader finds survives the tool's own table,
// written and read back, with its values, notes and minute.
#include <cstdlib>

#include "cardiolith/interop/delimited.hpp"
#include "import_properties.hpp"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  ::setenv("TZ", "UTC", 1);  // local dates are written to the minute; a zone of seconds would not round-trip
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace cardiolith;
  return fuzzing::fuzzOneInput(data, size, [](std::string_view input) {
    const fuzzing::OpenReader open = [](std::istream& in) { return interop::readDelimited(in, {}); };
    const auto readings = fuzzing::readingsOf(input, open);
    std::ostringstream table;
    interop::writeDelimited(table, readings, {}, {});
    fuzzing::requireReadBack(readings, table.str(), open, 60.0);
  });
}
