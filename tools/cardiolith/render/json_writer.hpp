#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace cardiolith::tool {

// Writes compact JSON to a stream, inserting the commas. Strings must be UTF-8; quotes, backslashes and
// control characters are escaped. Numbers that JSON can't hold (infinity, not-a-number) are written as
// null. The caller keeps begin and end calls balanced and gives every member of an object a key.
class JsonWriter {
 public:
  explicit JsonWriter(std::ostream& out) : out_(out) {}

  JsonWriter& beginObject();
  JsonWriter& endObject();
  JsonWriter& beginArray();
  JsonWriter& endArray();
  JsonWriter& key(std::string_view name);

  JsonWriter& string(std::string_view text);
  JsonWriter& integer(std::int64_t number);
  // The shortest decimal that reads back as the same float.
  JsonWriter& number(float number);
  JsonWriter& boolean(bool value);
  JsonWriter& null();

  JsonWriter& stringOrNull(const std::optional<std::string>& text) { return text ? string(*text) : null(); }
  JsonWriter& numberOrNull(const std::optional<float>& value) { return value ? number(*value) : null(); }

 private:
  void beforeValue();
  void writeQuoted(std::string_view text);

  std::ostream& out_;
  // One entry per open object or array: whether it holds a value yet.
  std::vector<bool> hasValue_;
  bool afterKey_ = false;
};

}  // namespace cardiolith::tool
