#include "render/json_writer.hpp"

#include <array>
#include <charconv>
#include <cmath>

namespace cardiolith::tool {

void JsonWriter::beforeValue() {
  if (afterKey_) {
    afterKey_ = false;
    return;
  }
  if (!hasValue_.empty()) {
    if (hasValue_.back()) out_ << ',';
    hasValue_.back() = true;
  }
}

void JsonWriter::writeQuoted(std::string_view text) {
  static constexpr char hex[] = "0123456789abcdef";
  out_ << '"';
  for (const char character : text) {
    const auto byte = static_cast<unsigned char>(character);
    switch (character) {
      case '"':
        out_ << "\\\"";
        break;
      case '\\':
        out_ << "\\\\";
        break;
      case '\n':
        out_ << "\\n";
        break;
      case '\r':
        out_ << "\\r";
        break;
      case '\t':
        out_ << "\\t";
        break;
      default:
        if (byte < 0x20) {
          out_ << "\\u00" << hex[byte >> 4] << hex[byte & 0xF];
        } else {
          out_ << character;
        }
    }
  }
  out_ << '"';
}

JsonWriter& JsonWriter::beginObject() {
  beforeValue();
  out_ << '{';
  hasValue_.push_back(false);
  return *this;
}

JsonWriter& JsonWriter::endObject() {
  out_ << '}';
  hasValue_.pop_back();
  return *this;
}

JsonWriter& JsonWriter::beginArray() {
  beforeValue();
  out_ << '[';
  hasValue_.push_back(false);
  return *this;
}

JsonWriter& JsonWriter::endArray() {
  out_ << ']';
  hasValue_.pop_back();
  return *this;
}

JsonWriter& JsonWriter::key(std::string_view name) {
  beforeValue();
  writeQuoted(name);
  out_ << ':';
  afterKey_ = true;
  return *this;
}

JsonWriter& JsonWriter::string(std::string_view text) {
  beforeValue();
  writeQuoted(text);
  return *this;
}

JsonWriter& JsonWriter::integer(std::int64_t number) {
  beforeValue();
  out_ << number;
  return *this;
}

JsonWriter& JsonWriter::number(float number) {
  if (!std::isfinite(number)) return null();
  beforeValue();
  std::array<char, 32> buffer{};
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number);
  out_.write(buffer.data(), result.ptr - buffer.data());
  return *this;
}

JsonWriter& JsonWriter::boolean(bool value) {
  beforeValue();
  out_ << (value ? "true" : "false");
  return *this;
}

JsonWriter& JsonWriter::null() {
  beforeValue();
  out_ << "null";
  return *this;
}

}  // namespace cardiolith::tool
