#pragma once

#include <simdjson.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "cardiolith/platform/uuid.hpp"
#include "model/json_path.hpp"
#include "model/json_tokens.hpp"
#include "model/readings_decoding.hpp"

namespace cardiolith::json_detail {

namespace ondemand = simdjson::ondemand;

// Reads one JSON document on demand, straight into the caller's values. Every read names the path of its
// value, so that a failure throws DecodingError saying which member failed and why; text that is not
// JSON fails with the byte offset of the fault. The readers of well-formed values are inline and allocate
// nothing; everything that builds a message lives out of line.
class JsonReader {
 public:
  // Finds the tokens of the text. The text is read where it is when `readablePadding` bytes after its end
  // may be read too (kReadPadding or more); otherwise it is first copied into a padded buffer. Throws when
  // the text cannot be tokenized.
  explicit JsonReader(std::string_view text, std::size_t readablePadding = 0);
  // The same with the caller's parser, whose buffers then serve many documents in turn.
  JsonReader(ondemand::parser& parser, std::string_view text, std::size_t readablePadding);
  JsonReader(const JsonReader&) = delete;
  JsonReader& operator=(const JsonReader&) = delete;

  ondemand::object rootObject();
  ondemand::array rootArray();
  // Call once the root value has been read: fails when anything but whitespace follows it.
  void finish();

  // The unescaped text, valid as long as this reader.
  std::string_view string(ondemand::value& value, const JsonPath& path) {
    if (const auto text = unescapedInPlace(value)) return *text;
    return decodedString(value, path, Expected::string);
  }

  // A JSON integer in the signed 64-bit range; a fraction or an exponent fails, even 120.0.
  std::int64_t integer(ondemand::value& value, const JsonPath& path) {
    std::int64_t result;
    if (const auto error = value.get_int64().get(result)) [[unlikely]]
      failValue(value, path, error, Expected::integer);
    return result;
  }

  // Any JSON number, as the nearest double.
  double number(ondemand::value& value, const JsonPath& path) {
    double result;
    if (const auto error = value.get_double().get(result)) [[unlikely]]
      failValue(value, path, error, Expected::number);
    return result;
  }

  // A string in the 36-character 8-4-4-4-12 form, hex digits of either case.
  UUID uuid(ondemand::value& value, const JsonPath& path) {
    const auto text = unescapedInPlace(value);
    const auto uuid = UUID::parse(text ? *text : decodedString(value, path, Expected::uuid));
    if (!uuid) [[unlikely]]
      failUUID(value, path);
    return *uuid;
  }

  ondemand::object object(ondemand::value& value, const JsonPath& path) {
    ondemand::object result;
    if (const auto error = value.get_object().get(result)) [[unlikely]]
      failValue(value, path, error, Expected::object);
    return result;
  }

  ondemand::array array(ondemand::value& value, const JsonPath& path) {
    ondemand::array result;
    if (const auto error = value.get_array().get(result)) [[unlikely]]
      failValue(value, path, error, Expected::array);
    return result;
  }

  // True, and the value consumed, when it is null; false, and the value untouched, otherwise.
  bool isNull(ondemand::value& value) {
    bool result;
    if (value.is_null().get(result)) [[unlikely]]
      failLiteral(value);
    return result;
  }

  // Calls onMember(index, value) for each member whose key is keys[index], matched exactly after
  // unescaping. Members with other keys are read through and dropped, so broken JSON inside them still
  // fails. A repeated key calls onMember again; the last value wins where the caller stores it.
  template <std::size_t N, class OnMember>
  void forEachMember(ondemand::object& object, const std::array<std::string_view, N>& keys,
                     OnMember&& onMember) {
    std::size_t hint = 0;
    for (auto result : object) {
      ondemand::field field;
      if (const auto error = std::move(result).get(field)) [[unlikely]]
        failSyntax(error);
      const std::size_t index = matchKey(field, keys, hint);
      if (index < N) {
        onMember(index, field.value());
      } else {
        skip(field.value());
      }
    }
  }

  // Calls onElement(index, value) for each element in order.
  template <class OnElement>
  void forEachElement(ondemand::array& array, OnElement&& onElement) {
    std::size_t index = 0;
    for (auto result : array) {
      ondemand::value value;
      if (const auto error = std::move(result).get(value)) [[unlikely]]
        failSyntax(error);
      onElement(index++, value);
    }
  }

  [[noreturn]] static void failMissing(const JsonPath& path);

 private:
  enum class Expected { string, integer, number, uuid, object, array };

  // The index of the key among `keys`, or N. Tries the key after the previous match first, so members in
  // the order they are written cost one comparison each.
  template <std::size_t N>
  std::size_t matchKey(ondemand::field& field, const std::array<std::string_view, N>& keys,
                       std::size_t& hint) {
    const ondemand::raw_json_string key = field.key();
    for (std::size_t tried = 0; tried < N; ++tried) {
      const std::size_t index = (hint + tried) % N;
      // Safe on the raw text: no key in `keys` holds a quote or a backslash.
      if (key.unsafe_is_equal(keys[index])) {
        hint = index + 1;
        return index;
      }
    }
    if (!hasEscapes(key)) return N;
    const std::string_view unescaped = unescapedKey(field);
    for (std::size_t index = 0; index < N; ++index) {
      if (unescaped == keys[index]) return index;
    }
    return N;
  }

  // The content of a string value straight from the input, when it is a string and holds no escape
  // sequence: then the input bytes are the text (the tokenizer has checked them for UTF-8 and control
  // characters), so nothing is copied. The value is consumed as a raw string, so that the parser still
  // checks what follows it.
  static std::optional<std::string_view> unescapedInPlace(ondemand::value& value) noexcept {
    std::string_view token = trimmedToken(value.raw_json_token());
    if (token.size() < 2 || token.front() != '"' || token.back() != '"') return std::nullopt;
    token = token.substr(1, token.size() - 2);
    if (token.find('\\') != std::string_view::npos) return std::nullopt;
    ondemand::raw_json_string raw;
    if (value.get_raw_json_string().get(raw)) return std::nullopt;
    return token;
  }

  // A string value unescaped by the parser, into its own buffer.
  std::string_view decodedString(ondemand::value& value, const JsonPath& path, Expected expected) {
    std::string_view result;
    if (const auto error = value.get_string().get(result)) [[unlikely]]
      failValue(value, path, error, expected);
    return result;
  }

  static bool hasEscapes(const ondemand::raw_json_string& key) noexcept;
  std::string_view unescapedKey(ondemand::field& field);

  // Reads a value through, checking that it is well-formed JSON.
  void skip(ondemand::value& value);
  void checkNestingDepth(ondemand::value& container);
  void check(simdjson::error_code error) {
    if (error) [[unlikely]]
      failSyntax(error);
  }

  [[noreturn]] void failValue(ondemand::value& value, const JsonPath& path, simdjson::error_code error,
                              Expected expected);
  [[noreturn]] void failUUID(ondemand::value& value, const JsonPath& path);
  [[noreturn]] void failRoot(simdjson::error_code error, Expected expected);
  [[noreturn]] void failLiteral(ondemand::value& value);
  [[noreturn]] void failSyntax(simdjson::error_code error);
  [[noreturn]] void failAt(std::size_t offset, std::string_view reason) const;
  [[noreturn]] void failAt(const char* where, std::string_view reason) const;
  std::size_t offsetOf(const char* where) const { return static_cast<std::size_t>(where - text_.data()); }
  // Where a value begins in the input, whether or not it has been read.
  static const char* tokenStart(ondemand::value& value) { return value.raw_json_token().data(); }
  [[noreturn]] static void fail(const JsonPath& path, const std::string& reason);
  std::size_t currentOffset();

  simdjson::padded_string buffer_;  // a padded copy of the input, when it could not be read in place
  std::string_view text_;           // the input the parser reads: the caller's text or buffer_
  ondemand::parser ownParser_;      // allocates nothing until it parses
  ondemand::parser& parser_;
  ondemand::document document_;
};

}  // namespace cardiolith::json_detail
