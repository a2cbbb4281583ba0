// Any bytes read as a health app's export.xml: no crash, no leak, no sanitizer finding, and no reading
// without its position.
#include <sstream>

#include "cardiolith/interop/health_export.hpp"
#include "import_properties.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace cardiolith;
  std::istringstream in(std::string(reinterpret_cast<const char*>(data), size));
  (void)fuzzing::readingsOf([&] { return interop::readHealthExport(in, {}); });
  return 0;
}
