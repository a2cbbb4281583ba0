#pragma once

// The properties of the JSON decoders, shared by the fuzz targets and the regression test that replays
// their inputs: whatever decodes must be JSON by an independent parser, and must encode and decode again
// to an equal value.

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "cardiolith/model/json.hpp"
#include "json_syntax_oracle.hpp"

namespace cardiolith::fuzzing {

enum class Outcome { rejected, roundTripped };

// An input that decoded although it is not JSON, or did not come back equal; what() says where it broke.
struct PropertyFailure : std::logic_error {
  using std::logic_error::logic_error;
};

namespace property_detail {

inline std::optional<std::string> difference(const Tag& a, const Tag& b, const std::string& where) {
  if (a == b) return std::nullopt;
  return where + ": " + json::encode(a) + " came back as " + json::encode(b);
}

inline std::optional<std::string> difference(const std::vector<Tag>& a, const std::vector<Tag>& b,
                                             const std::string& where = "tags") {
  if (a.size() != b.size()) {
    return where + ": " + std::to_string(a.size()) + " elements came back as " + std::to_string(b.size());
  }
  for (std::size_t index = 0; index < a.size(); ++index) {
    if (auto found = difference(a[index], b[index], where + "[" + std::to_string(index) + "]")) return found;
  }
  return std::nullopt;
}

inline std::optional<std::string> difference(const Tag& a, const Tag& b) { return difference(a, b, "tag"); }

inline std::optional<std::string> difference(const Readings& a, const Readings& b) {
  if (a.readings.size() != b.readings.size()) {
    return "readings: " + std::to_string(a.readings.size()) + " elements came back as " +
           std::to_string(b.readings.size());
  }
  for (std::size_t index = 0; index < a.readings.size(); ++index) {
    const Reading& first = *a.readings[index];
    const Reading& second = *b.readings[index];
    const std::string where = "readings[" + std::to_string(index) + "]";
    // Reading's equality leaves the tag set out, so that is compared on its own.
    if (!(first == second)) return where + " is not equal after the round trip";
    if (first.tagIDs() != second.tagIDs()) return where + ".tagIDs differ after the round trip";
  }
  return std::nullopt;
}

}  // namespace property_detail

// Decodes `input` as T. A DecodingError is a clean rejection; any other exception escapes. A decoded input
// must be well-formed JSON, and its value must encode, decode again and compare equal, or PropertyFailure
// is thrown.
template <class T>
Outcome checkDecoding(std::string_view input) {
  std::optional<T> first;
  try {
    first = json::decode<T>(input);
  } catch (const DecodingError&) {
    return Outcome::rejected;
  }
  if (!isJson(input)) throw PropertyFailure("decoded text that is not JSON");
  std::string encoded;
  try {
    encoded = json::encode(*first);
  } catch (const EncodingError& error) {
    throw PropertyFailure(std::string("decoded, but does not encode: ") + error.what());
  }
  std::optional<T> second;
  try {
    second = json::decode<T>(encoded);
  } catch (const DecodingError& error) {
    throw PropertyFailure(std::string("own encoding does not decode: ") + error.what() +
                          "\nencoded: " + encoded);
  }
  if (auto found = property_detail::difference(*first, *second)) {
    throw PropertyFailure(*found + "\nencoded: " + encoded);
  }
  return Outcome::roundTripped;
}

}  // namespace cardiolith::fuzzing
