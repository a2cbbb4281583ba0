#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "cardiolith/export.hpp"
#include "cardiolith/model/readings.hpp"
#include "cardiolith/model/tag.hpp"

namespace cardiolith {

// A document that cannot be written so that it reads back. what() names the element and the reason,
// for example "readings[3].date: nan is not a finite number".
struct CARDIOLITH_EXPORT EncodingError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// A document that cannot be read. what() names the member and the reason, for example
// "readings[41].pulse: 1.5 is not an integer", or the byte offset of broken JSON.
struct CARDIOLITH_EXPORT DecodingError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// The JSON forms of the readings document, of one tag and of the tags file. Output is compact UTF-8 with
// members in their fixed order; absent members are left out, null is never written. Decoding is strict:
// the whole document fails on the first bad member.
namespace json {

[[nodiscard]] CARDIOLITH_EXPORT std::string encode(const Readings& readings);
[[nodiscard]] CARDIOLITH_EXPORT std::string encode(const Tag& tag);
[[nodiscard]] CARDIOLITH_EXPORT std::string encode(const std::vector<Tag>& tags);

template <class T>
[[nodiscard]] T decode(std::string_view text);

template <>
[[nodiscard]] CARDIOLITH_EXPORT Readings decode<Readings>(std::string_view text);
template <>
[[nodiscard]] CARDIOLITH_EXPORT Tag decode<Tag>(std::string_view text);
template <>
[[nodiscard]] CARDIOLITH_EXPORT std::vector<Tag> decode<std::vector<Tag>>(std::string_view text);

}  // namespace json
}  // namespace cardiolith
