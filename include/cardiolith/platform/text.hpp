#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Text comparison under Unicode canonical equivalence (NFC), with a byte-only fast path for ASCII.
namespace cardiolith::text {

bool isASCII(std::string_view text) noexcept;
bool isValidUTF8(std::string_view text) noexcept;

// The NFC form of UTF-8 text. ASCII text is returned unchanged without consulting ICU. Invalid UTF-8
// sequences are replaced by U+FFFD.
std::string canonical(std::string_view text);

// True when the two texts are canonically equivalent.
bool canonicallyEqual(std::string_view a, std::string_view b);

// A hash that agrees with canonicallyEqual.
std::size_t canonicalHash(std::string_view text);

// Orders texts by Unicode scalar values of their NFC forms (upper-case ASCII before lower case).
// Negative, zero or positive like strcmp.
int canonicalCompare(std::string_view a, std::string_view b);

// The text with letter case removed under Unicode's full case folding, in NFC: two titles that differ only in
// case ("Straße", "STRASSE"; "Éte", "éTE") fold to the same text. For matching, never for display.
std::string caseFolded(std::string_view text);

// Orders texts as the user's locale sorts them (its collation: "apple" < "Banana" < "éclair" < "zebra"),
// for lists that people read. Texts that collate equal are ordered by canonicalCompare, so the order is
// total. Negative, zero or positive like strcmp. May be called from any thread.
int localeCompare(std::string_view a, std::string_view b);

}  // namespace cardiolith::text
