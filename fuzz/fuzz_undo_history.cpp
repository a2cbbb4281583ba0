// The tool's undo history reader: any text is refused with HistoryFormatError, or its steps encode to a
// text that decodes to the same steps.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "log/history_format.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace cardiolith::tool;
  std::vector<HistoryStep> steps;
  try {
    steps = decodeHistory(std::string_view(reinterpret_cast<const char*>(data), size));
  } catch (const HistoryFormatError&) {
    return 0;
  }
  if (decodeHistory(encodeHistory(steps)) != steps) {
    std::fprintf(stderr, "property failed: the decoded steps do not survive encoding\n");
    std::abort();
  }
  return 0;
}
