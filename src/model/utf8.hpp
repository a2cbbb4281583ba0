#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace cardiolith::utf8 {

// The length of the well-formed UTF-8 sequence that starts at text[offset], or 0 when none starts there:
// a stray continuation byte, an overlong form, a surrogate, a value above U+10FFFF, or a sequence cut short.
std::size_t sequenceLength(std::string_view text, std::size_t offset) noexcept;

// The offset of the first byte that does not begin a well-formed sequence, or nothing when the whole text is
// well-formed UTF-8.
std::optional<std::size_t> firstInvalidByte(std::string_view text) noexcept;

}  // namespace cardiolith::utf8
