// text::printable and text::isBlank on any bytes (notes and tag titles come from files and command lines):
// the result is valid UTF-8 without a control character or a direction override, printing it again
// changes nothing, and a blank text stays blank.

#include <cstddef>
#include <string>
#include <string_view>

#include "cardiolith/platform/text.hpp"
#include "fuzz_one_input.hpp"

namespace {

// No C0 control, DEL, C1 control (U+0080-U+009F, encoded C2 80-C2 9F) or bidirectional control
// (U+202A-U+202E: E2 80 AA-AE; U+2066-U+2069: E2 81 A6-A9).
bool holdsNoControls(std::string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const auto next = i + 1 < text.size() ? static_cast<unsigned char>(text[i + 1]) : 0;
    const auto third = i + 2 < text.size() ? static_cast<unsigned char>(text[i + 2]) : 0;
    if (byte < 0x20 || byte == 0x7f) return false;
    if (byte == 0xc2 && next >= 0x80 && next <= 0x9f) return false;
    if (byte == 0xe2 && next == 0x80 && third >= 0xaa && third <= 0xae) return false;
    if (byte == 0xe2 && next == 0x81 && third >= 0xa6 && third <= 0xa9) return false;
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using cardiolith::fuzzing::require;
  namespace text = cardiolith::text;
  return cardiolith::fuzzing::fuzzOneInput(data, size, [](std::string_view input) {
    const std::string shown = text::printable(input);
    require(text::isValidUTF8(shown), "printable text is valid UTF-8");
    require(holdsNoControls(shown), "printable text holds no control character or override");
    require(text::printable(shown) == shown, "printable text prints as itself");
    if (text::isValidUTF8(input) && text::isBlank(input))
      require(text::isBlank(shown), "a blank text stays blank when printed");
  });
}
