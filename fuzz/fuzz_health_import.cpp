// Any bytes read as a health app's export.xml: no crash, no leak, no sanitizer finding, and no reading
// without its position.
#include "cardiolith/interop/health_export.hpp"
#include "import_properties.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace cardiolith;
  return fuzzing::fuzzOneInput(data, size, [](std::string_view input) {
    (void)fuzzing::readingsOf(input, [](std::istream& in) { return interop::readHealthExport(in, {}); });
  });
}
