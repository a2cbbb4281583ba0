#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "cardiolith/export.hpp"

// Text comparison under Unicode canonical equivalence (NFC), with a byte-only fast path for ASCII.
namespace cardiolith::text {

[[nodiscard]] CARDIOLITH_EXPORT bool isASCII(std::string_view text) noexcept;
[[nodiscard]] CARDIOLITH_EXPORT bool isValidUTF8(std::string_view text) noexcept;

// The NFC form of UTF-8 text. ASCII text is returned unchanged without consulting ICU. Invalid UTF-8
// sequences are replaced by U+FFFD.
[[nodiscard]] CARDIOLITH_EXPORT std::string canonical(std::string_view text);

// True when the two texts are canonically equivalent.
[[nodiscard]] CARDIOLITH_EXPORT bool canonicallyEqual(std::string_view a, std::string_view b);

// A hash that agrees with canonicallyEqual.
[[nodiscard]] CARDIOLITH_EXPORT std::size_t canonicalHash(std::string_view text);

// Orders texts by Unicode scalar values of their NFC forms (upper-case ASCII before lower case).
// Negative, zero or positive like strcmp.
[[nodiscard]] CARDIOLITH_EXPORT int canonicalCompare(std::string_view a, std::string_view b);

}  // namespace cardiolith::text
