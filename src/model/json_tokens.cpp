#include "model/json_tokens.hpp"

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

}  // namespace

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
