// The tool's undo history reader: any text is refused with HistoryFormatError, or its steps encode to a
// text that decodes to the same steps.

#include <string_view>
#include <vector>

#include "fuzz_one_input.hpp"
#include "log/history_format.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace cardiolith::tool;
  return cardiolith::fuzzing::fuzzOneInput(data, size, [](std::string_view input) {
    std::vector<HistoryStep> steps;
    try {
      steps = decodeHistory(input);
    } catch (const HistoryFormatError&) {
      return;
    }
    cardiolith::fuzzing::require(decodeHistory(encodeHistory(steps)) == steps,
                                 "the decoded steps survive encoding");
  });
}
