#pragma once

// An independent judge of whether a text is JSON, for checking what the codec accepts.

#include <cstddef>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace cardiolith::fuzzing {
namespace oracle_detail {

inline bool isDigit(char c) { return c >= '0' && c <= '9'; }
inline bool isNumberCharacter(char c) {
  return isDigit(c) || c == '-' || c == '+' || c == '.' || c == 'e' || c == 'E';
}

// The number grammar: -?(0|[1-9][0-9]*)(\.[0-9]+)?([eE][+-]?[0-9]+)?
inline bool isNumber(std::string_view token) {
  std::size_t i = 0;
  auto digits = [&] {
    const std::size_t start = i;
    while (i < token.size() && isDigit(token[i])) ++i;
    return i > start;
  };
  if (i < token.size() && token[i] == '-') ++i;
  if (i < token.size() && token[i] == '0') {
    ++i;
  } else if (!digits()) {
    return false;
  }
  if (i < token.size() && token[i] == '.' && (++i, !digits())) return false;
  if (i < token.size() && (token[i] == 'e' || token[i] == 'E')) {
    ++i;
    if (i < token.size() && (token[i] == '+' || token[i] == '-')) ++i;
    if (!digits()) return false;
  }
  return i == token.size();
}

// The text with every well-formed number outside strings replaced by 0. nlohmann rejects numbers beyond
// the range of a double, which the grammar allows; a well-formed number is JSON whatever its magnitude.
inline std::string withNumbersAsZero(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  bool inString = false;
  for (std::size_t i = 0; i < text.size();) {
    const char c = text[i];
    if (inString) {
      if (c == '\\' && i + 1 < text.size()) {
        out.append(text.substr(i, 2));
        i += 2;
        continue;
      }
      if (c == '"') inString = false;
    } else if (c == '"') {
      inString = true;
    } else if (c == '-' || isDigit(c)) {
      std::size_t end = i;
      while (end < text.size() && isNumberCharacter(text[end])) ++end;
      const std::string_view run = text.substr(i, end - i);
      out.append(isNumber(run) ? std::string_view("0") : run);
      i = end;
      continue;
    }
    out.push_back(c);
    ++i;
  }
  return out;
}

}  // namespace oracle_detail

// True when the text is one JSON value (RFC 8259, UTF-8) with nothing but whitespace around it.
inline bool isJson(std::string_view text) {
  return nlohmann::json::accept(oracle_detail::withNumbersAsZero(text));
}

}  // namespace cardiolith::fuzzing
