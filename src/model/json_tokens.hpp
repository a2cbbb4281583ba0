#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// Looking at raw JSON text when a value or a document has to be rejected: what kind of number a token is,
// where a lexical error sits, and how to quote a token in a message.
namespace cardiolith::json_detail {

enum class NumberToken {
  invalid,     // not a JSON number
  integer,     // -?(0|[1-9][0-9]*)
  fractional,  // a JSON number with a fraction or an exponent
};
NumberToken classifyNumberToken(std::string_view token) noexcept;

// The double nearest to a valid JSON number token, as a correctly rounding strtod gives it: a number too
// small for a double is zero with the token's sign. Nothing when the number is beyond the largest double.
std::optional<double> nearestDouble(std::string_view token) noexcept;

// A token without the whitespace that follows it in the input.
inline std::string_view trimmedToken(std::string_view token) noexcept {
  while (!token.empty() &&
         (token.back() == ' ' || token.back() == '\t' || token.back() == '\n' || token.back() == '\r')) {
    token.remove_suffix(1);
  }
  return token;
}

// A token as shown in an error message: cut after 40 bytes (at a character boundary) with "...".
std::string abbreviatedToken(std::string_view token);

// The first error that a tokenizer finds before any structure is read: malformed UTF-8, a control
// character inside a string, a string that is never closed, or no value at all.
struct LexicalError {
  std::size_t offset;
  std::string_view reason;
};
std::optional<LexicalError> findLexicalError(std::string_view text) noexcept;

}  // namespace cardiolith::json_detail
