#pragma once

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "cardiolith/platform/uuid.hpp"
#include "model/json_path.hpp"

namespace cardiolith::json_detail {

// Appends compact JSON text to one string that is reserved once up front. Values that cannot be written
// so that they read back throw EncodingError naming their path.
class JsonWriter {
 public:
  // The longest text `integer` or `number` writes ("-9223372036854775808", "-2.2250738585072014e-308").
  static constexpr std::size_t kMaxNumberLength = 24;
  // A UUID string with its quotes.
  static constexpr std::size_t kQuotedUUIDLength = 38;

  explicit JsonWriter(std::size_t expectedSize) { out_.reserve(expectedSize); }

  // Punctuation and keys, which need no escaping.
  void raw(std::string_view text) { out_.append(text); }

  void integer(std::int64_t value) {
    char buffer[kMaxNumberLength];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    out_.append(buffer, result.ptr);
  }

  // The shortest text that reads back as the same double. Throws for NaN and infinities.
  void number(double value, const JsonPath& path);

  // A JSON string with the standard escapes; other text, "/" and non-ASCII included, is copied as it is.
  // Throws when the text is not valid UTF-8.
  void string(std::string_view text, const JsonPath& path);

  // The canonical upper-case form, quoted.
  void uuid(const UUID& uuid) {
    char buffer[kQuotedUUIDLength];
    buffer[0] = '"';
    uuid.writeUuidString(buffer + 1);
    buffer[kQuotedUUIDLength - 1] = '"';
    out_.append(buffer, sizeof buffer);
  }

  std::string take() && { return std::move(out_); }

 private:
  void escape(unsigned char c);

  std::string out_;
};

}  // namespace cardiolith::json_detail
