#pragma once

#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>

namespace cardiolith::interop::detail {

// A decimal integer in the signed 64-bit range, with an optional leading "+" or "-" and nothing else.
inline std::optional<std::int64_t> wholeNumber(std::string_view text) {
  if (text.starts_with('+')) text.remove_prefix(1);
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || text.empty()) return std::nullopt;
  return value;
}

}  // namespace cardiolith::interop::detail
