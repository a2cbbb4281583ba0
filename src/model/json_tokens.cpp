#include "model/json_tokens.hpp"

#include <charconv>
#include <cstdint>
#include <system_error>

#include "model/utf8.hpp"

namespace cardiolith::json_detail {
namespace {

bool isDigit(char c) noexcept { return c >= '0' && c <= '9'; }
bool isWhitespace(char c) noexcept { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

// Advances past one or more digits; false when there is none.
bool skipDigits(std::string_view token, std::size_t& i) noexcept {
  const std::size_t start = i;
  while (i < token.size() && isDigit(token[i])) ++i;
  return i > start;
}

// Whether a valid number token that no double holds is beyond the smallest one rather than the largest:
// whether the power of ten of its first significant digit is negative. A token out of range is hundreds of
// powers away from zero, so the count may be off by one; the exponent saturates far beyond that.
bool isBelowDoubleRange(std::string_view token) noexcept {
  std::size_t i = token.front() == '-' ? 1 : 0;
  std::int64_t power = 0;
  bool significant = false;
  bool afterPoint = false;
  for (; i < token.size() && token[i] != 'e' && token[i] != 'E'; ++i) {
    if (token[i] == '.') {
      afterPoint = true;
    } else if (!significant && token[i] == '0') {
      if (afterPoint) --power;
    } else {
      significant = true;
      if (!afterPoint) ++power;
    }
  }
  if (i < token.size()) {
    const bool negative = token[++i] == '-';
    if (token[i] == '-' || token[i] == '+') ++i;
    constexpr std::int64_t kSaturated = std::int64_t{1} << 40;
    std::int64_t exponent = 0;
    for (; i < token.size() && exponent < kSaturated; ++i) exponent = exponent * 10 + (token[i] - '0');
    power += negative ? -exponent : exponent;
  }
  return power < 0;
}

}  // namespace

std::optional<double> nearestDouble(std::string_view token) noexcept {
  const char* const end = token.data() + token.size();
  double value = 0;
  const auto [stop, error] = std::from_chars(token.data(), end, value);
  if (stop != end) return std::nullopt;
  if (error == std::errc()) return value;
  if (error == std::errc::result_out_of_range && isBelowDoubleRange(token))
    return token.front() == '-' ? -0.0 : 0.0;
  return std::nullopt;
}

NumberToken classifyNumberToken(std::string_view token) noexcept {
  std::size_t i = 0;
  if (i < token.size() && token[i] == '-') ++i;
  if (i < token.size() && token[i] == '0') {
    ++i;
  } else if (!skipDigits(token, i)) {
    return NumberToken::invalid;
  }
  bool fractional = false;
  if (i < token.size() && token[i] == '.') {
    ++i;
    if (!skipDigits(token, i)) return NumberToken::invalid;
    fractional = true;
  }
  if (i < token.size() && (token[i] == 'e' || token[i] == 'E')) {
    ++i;
    if (i < token.size() && (token[i] == '+' || token[i] == '-')) ++i;
    if (!skipDigits(token, i)) return NumberToken::invalid;
    fractional = true;
  }
  if (i != token.size()) return NumberToken::invalid;
  return fractional ? NumberToken::fractional : NumberToken::integer;
}

std::string abbreviatedToken(std::string_view token) {
  constexpr std::size_t kLimit = 40;
  if (token.size() <= kLimit) return std::string(token);
  std::size_t cut = kLimit;
  while (cut > 0 && (static_cast<unsigned char>(token[cut]) & 0xC0) == 0x80) --cut;
  return std::string(token.substr(0, cut)) + "...";
}

std::optional<LexicalError> findLexicalError(std::string_view text) noexcept {
  bool inString = false;
  bool escaped = false;
  bool sawValue = false;
  std::size_t stringStart = 0;
  for (std::size_t i = 0; i < text.size();) {
    const auto c = static_cast<unsigned char>(text[i]);
    if (c >= 0x80) {
      const std::size_t length = utf8::sequenceLength(text, i);
      if (length == 0) return LexicalError{i, "invalid UTF-8"};
      i += length;
      escaped = false;
      sawValue = true;
      continue;
    }
    if (inString) {
      if (c < 0x20) return LexicalError{i, "control character in a string (it must be escaped)"};
      if (escaped) {
        escaped = false;
      } else if (c == '\\') {
        escaped = true;
      } else if (c == '"') {
        inString = false;
      }
    } else if (c == '"') {
      inString = true;
      stringStart = i;
    }
    if (!isWhitespace(static_cast<char>(c))) sawValue = true;
    ++i;
  }
  if (inString) return LexicalError{stringStart, "string is never closed"};
  if (!sawValue) return LexicalError{text.size(), "no JSON value"};
  return std::nullopt;
}

}  // namespace cardiolith::json_detail
