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

// `text` with every occurrence of `target` replaced by `replacement`, in one left-to-right pass, matches
// not overlapping and replaced text not searched again, case-sensitive. Occurrences are found under
// canonical equivalence: "é" as U+00E9 matches "e" followed by U+0301 and the reverse. A match begins and
// ends between whole characters with their combining marks, so "e" does not match inside "e" + U+0301.
// An empty target matches nothing. When either text is not valid UTF-8 the bytes are matched as they are.
// An ASCII target is searched byte for byte, consulting ICU only about the non-ASCII characters of the text.
[[nodiscard]] CARDIOLITH_EXPORT std::string replacingOccurrences(std::string_view text,
                                                                 std::string_view target,
                                                                 std::string_view replacement);

// Orders texts by Unicode scalar values of their NFC forms (upper-case ASCII before lower case).
// Negative, zero or positive like strcmp.
[[nodiscard]] CARDIOLITH_EXPORT int canonicalCompare(std::string_view a, std::string_view b);

// The text with letter case removed under Unicode's full case folding, in NFC: two titles that differ only in
// case ("Straße", "STRASSE"; "Éte", "éTE") fold to the same text. For matching, never for display.
std::string caseFolded(std::string_view text);

// Orders texts as the user's locale sorts them (its collation: "apple" < "Banana" < "éclair" < "zebra"),
// for lists that people read. Texts that collate equal are ordered by canonicalCompare, so the order is
// total. Negative, zero or positive like strcmp. May be called from any thread.
int localeCompare(std::string_view a, std::string_view b);

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
