#include "model/utf8.hpp"

namespace cardiolith::utf8 {

std::size_t sequenceLength(std::string_view text, std::size_t offset) noexcept {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const auto continuesAt = [&](std::size_t i) { return i < text.size() && (byte(i) & 0xC0) == 0x80; };
  const unsigned char lead = byte(offset);
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead <= 0xDF) return continuesAt(offset + 1) ? 2 : 0;
  if (lead >= 0xE0 && lead <= 0xEF) {
    if (!continuesAt(offset + 1) || !continuesAt(offset + 2)) return 0;
    if (lead == 0xE0 && byte(offset + 1) < 0xA0) return 0;   // overlong
    if (lead == 0xED && byte(offset + 1) >= 0xA0) return 0;  // UTF-16 surrogate
    return 3;
  }
  if (lead >= 0xF0 && lead <= 0xF4) {
    if (!continuesAt(offset + 1) || !continuesAt(offset + 2) || !continuesAt(offset + 3)) return 0;
    if (lead == 0xF0 && byte(offset + 1) < 0x90) return 0;   // overlong
    if (lead == 0xF4 && byte(offset + 1) >= 0x90) return 0;  // above U+10FFFF
    return 4;
  }
  return 0;
}

std::optional<std::size_t> firstInvalidByte(std::string_view text) noexcept {
  std::size_t offset = 0;
  while (offset < text.size()) {
    const std::size_t length = sequenceLength(text, offset);
    if (length == 0) return offset;
    offset += length;
  }
  return std::nullopt;
}

}  // namespace cardiolith::utf8
