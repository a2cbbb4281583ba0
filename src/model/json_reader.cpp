#include "model/json_reader.hpp"

#include <new>

#include "cardiolith/model/json.hpp"
#include "model/json_tokens.hpp"

namespace cardiolith::json_detail {
namespace {

std::string_view describe(ondemand::json_type type) {
  switch (type) {
    case ondemand::json_type::array:
      return "an array";
    case ondemand::json_type::object:
      return "an object";
    case ondemand::json_type::number:
      return "a number";
    case ondemand::json_type::string:
      return "a string";
    case ondemand::json_type::boolean:
      return "a boolean";
    case ondemand::json_type::null:
      return "null";
  }
  return "an unknown value";
}

}  // namespace

static_assert(kReadPadding >= simdjson::SIMDJSON_PADDING,
              "the in-place promise must cover simdjson's padding");

JsonReader::JsonReader(std::string_view text, std::size_t readablePadding)
    : JsonReader(ownParser_, text, readablePadding) {}

JsonReader::JsonReader(ondemand::parser& parser, std::string_view text, std::size_t readablePadding)
    : text_(text), parser_(parser) {
  simdjson::padded_string_view input(text.data(), text.size(), text.size() + readablePadding);
  if (readablePadding < simdjson::SIMDJSON_PADDING) {
    buffer_ = simdjson::padded_string(text);
    if (buffer_.data() == nullptr) throw std::bad_alloc();  // padded_string reports no other way
    input = buffer_;
    text_ = std::string_view(buffer_.data(), buffer_.size());
  }
  if (const auto error = parser_.iterate(input).get(document_)) {
    if (const auto lexical = findLexicalError(text)) failAt(lexical->offset, lexical->reason);
    throw DecodingError(std::string("cannot read JSON: ") + simdjson::error_message(error));
  }
}

ondemand::object JsonReader::rootObject() {
  ondemand::object result;
  if (const auto error = document_.get_object().get(result)) failRoot(error, Expected::object);
  return result;
}

ondemand::array JsonReader::rootArray() {
  ondemand::array result;
  if (const auto error = document_.get_array().get(result)) failRoot(error, Expected::array);
  return result;
}

void JsonReader::finish() {
  const char* location;
  if (document_.current_location().get(location) == simdjson::OUT_OF_BOUNDS) return;  // nothing follows
  failAt(offsetOf(location), "unexpected content after the top-level value");
}

void JsonReader::failMissing(const JsonPath& path) { fail(path, "missing"); }

bool JsonReader::hasEscapes(const ondemand::raw_json_string& key) noexcept {
  // The raw text runs to the closing quote, which no backslash precedes unless the key is escaped.
  for (const char* p = key.raw();; ++p) {
    if (*p == '\\') return true;
    if (*p == '"') return false;
  }
}

std::string_view JsonReader::unescapedKey(ondemand::field& field) {
  const char* const quote = field.key().raw() - 1;
  std::string_view key;
  if (const auto error = field.unescaped_key().get(key)) failAt(quote, simdjson::error_message(error));
  return key;
}

void JsonReader::skip(ondemand::value& value) {
  ondemand::json_type type;
  check(value.type().get(type));
  switch (type) {
    case ondemand::json_type::object: {
      checkNestingDepth(value);
      ondemand::object object;
      check(value.get_object().get(object));
      for (auto result : object) {
        ondemand::field field;
        check(std::move(result).get(field));
        unescapedKey(field);
        skip(field.value());
      }
      return;
    }
    case ondemand::json_type::array: {
      checkNestingDepth(value);
      ondemand::array array;
      check(value.get_array().get(array));
      for (auto result : array) {
        ondemand::value element;
        check(std::move(result).get(element));
        skip(element);
      }
      return;
    }
    case ondemand::json_type::string: {
      std::string_view text;
      if (const auto error = value.get_string().get(text))
        failAt(tokenStart(value), simdjson::error_message(error));
      return;
    }
    case ondemand::json_type::number:
      // Checked by its grammar alone: a number too large for any machine type is still JSON.
      if (classifyNumberToken(trimmedToken(value.raw_json_token())) == NumberToken::invalid) {
        failAt(tokenStart(value), simdjson::error_message(simdjson::NUMBER_ERROR));
      }
      return;
    case ondemand::json_type::boolean: {
      bool flag;
      if (value.get_bool().get(flag)) failLiteral(value);
      return;
    }
    case ondemand::json_type::null:
      isNull(value);
      return;
  }
}

void JsonReader::checkNestingDepth(ondemand::value& container) {
  // The parser keeps one entry per open container up to its maximum depth; refusing deeper nesting also
  // bounds the recursion of skip.
  if (static_cast<std::size_t>(container.current_depth()) + 1 >= parser_.max_depth()) {
    failAt(tokenStart(container),
           "nested more than " + std::to_string(parser_.max_depth() - 1) + " levels deep");
  }
}

void JsonReader::failValue(ondemand::value& value, const JsonPath& path, simdjson::error_code error,
                           Expected expected) {
  ondemand::json_type type;
  check(value.type().get(type));
  if (type == ondemand::json_type::number &&
      (expected == Expected::integer || expected == Expected::number)) {
    const std::string_view token = trimmedToken(value.raw_json_token());
    const NumberToken kind = classifyNumberToken(token);
    if (kind == NumberToken::invalid)
      failAt(tokenStart(value), simdjson::error_message(simdjson::NUMBER_ERROR));
    if (expected == Expected::integer && kind == NumberToken::fractional) {
      fail(path, abbreviatedToken(token) + " is not an integer");
    }
    fail(path,
         abbreviatedToken(token) + (expected == Expected::integer ? " is out of the signed 64-bit range"
                                                                  : " is out of the range of a double"));
  }
  if (error != simdjson::INCORRECT_TYPE)
    failAt(tokenStart(value), simdjson::error_message(error));  // malformed
  skip(value);  // broken JSON in the value is reported as such, not as a type mismatch
  std::string_view wanted;
  switch (expected) {
    case Expected::string:
      wanted = "a string";
      break;
    case Expected::integer:
      wanted = "an integer";
      break;
    case Expected::number:
      wanted = "a number";
      break;
    case Expected::uuid:
      wanted = "a UUID string";
      break;
    case Expected::object:
      wanted = "an object";
      break;
    case Expected::array:
      wanted = "an array";
      break;
  }
  fail(path, "expected " + std::string(wanted) + ", found " + std::string(describe(type)));
}

void JsonReader::failUUID(ondemand::value& value, const JsonPath& path) {
  fail(path, abbreviatedToken(trimmedToken(value.raw_json_token())) + " is not a UUID");
}

void JsonReader::failRoot(simdjson::error_code error, Expected expected) {
  const bool wantsObject = expected == Expected::object;
  if (error == simdjson::INCORRECT_TYPE) {
    ondemand::json_type type;
    check(document_.type().get(type));
    fail(JsonPath(), std::string("expected ") + (wantsObject ? "an object" : "an array") + ", found " +
                         std::string(describe(type)));
  }
  if (error == simdjson::INCOMPLETE_ARRAY_OR_OBJECT) {
    // Raised before any member is read, when the last token is not the closing one of the root value, or
    // when the braces and brackets do not balance.
    const std::size_t last = text_.find_last_not_of(" \t\n\r");
    const char closing = wantsObject ? '}' : ']';
    if (last != std::string_view::npos && text_[last] != closing) {
      failAt(last, wantsObject ? "the document must end with the '}' that closes its top-level object"
                               : "the document must end with the ']' that closes its top-level array");
    }
    failAt(text_.size(), "unbalanced braces or brackets");
  }
  failSyntax(error);
}

void JsonReader::failLiteral(ondemand::value& value) {
  failAt(tokenStart(value), "malformed literal (true, false or null)");
}

void JsonReader::failSyntax(simdjson::error_code error) {
  failAt(currentOffset(), simdjson::error_message(error));
}

void JsonReader::failAt(const char* where, std::string_view reason) const { failAt(offsetOf(where), reason); }

void JsonReader::failAt(std::size_t offset, std::string_view reason) const {
  throw DecodingError("invalid JSON at byte " + std::to_string(offset) + ": " + std::string(reason));
}

void JsonReader::fail(const JsonPath& path, const std::string& reason) {
  throw DecodingError(path.toString() + ": " + reason);
}

std::size_t JsonReader::currentOffset() {
  const char* location;
  if (document_.current_location().get(location)) return text_.size();
  return offsetOf(location);
}

}  // namespace cardiolith::json_detail
