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

// The text made safe to show on a terminal or in a table cell: control characters (C0, DEL and C1, line
// breaks and tabs included, which would move the cursor or end a row) become spaces, a CRLF pair one
// space; bidirectional embeddings, overrides and isolates (U+202A-U+202E, U+2066-U+2069), which would
// reorder what follows them on the line, are dropped; invalid UTF-8 becomes U+FFFD. Other text is unchanged.
std::string printable(std::string_view text);

// True when the text shows nothing: empty, or only white space (no-break spaces included) and invisible
// characters such as zero-width spaces and joiners (Unicode's default-ignorable code points).
bool isBlank(std::string_view text);

// The number of Unicode code points of UTF-8 text (each invalid byte counts as one).
std::size_t codePointCount(std::string_view text) noexcept;

}  // namespace cardiolith::text
