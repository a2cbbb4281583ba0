#pragma once

// The properties of the JSON decoders, shared by the fuzz targets and the regression test that replays
// their inputs: whatever decodes must be JSON by an independent parser, must encode and decode again to an
// equal value, and its dates must be the nearest doubles of their tokens; the import's streaming reader
// of readings documents reads nothing the decoder refuses.

#include <algorithm>
#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <type_traits>

#include "cardiolith/interop/readings_document.hpp"
#include "cardiolith/model/json.hpp"
#include "fuzz_one_input.hpp"
#include "json_syntax_oracle.hpp"
#include "model/readings_decoding.hpp"

namespace cardiolith::fuzzing {

enum class Outcome { rejected, roundTripped };

template <class T>
bool sameValue(const T& a, const T& b) {
  return a == b;
}

// Reading's equality leaves the tag set out, so that is compared on its own.
inline bool sameValue(const Readings& a, const Readings& b) {
  return std::equal(a.readings.begin(), a.readings.end(), b.readings.begin(), b.readings.end(),
                    [](const auto& x, const auto& y) { return *x == *y && x->tagIDs() == y->tagIDs(); });
}

// Large readings documents are decoded a window at a time. With windows far smaller than the input, so
// that it is cut in many places, the windowed decoder must give the readings the whole-text decoder gives,
// or leave the input to it.
inline void checkWindows(std::string_view input) {
  std::optional<Readings> whole;
  try {
    whole = json_detail::decodeReadingsInPlace(std::string(input));
  } catch (const DecodingError&) {
  }
  for (const std::size_t windowSize : {std::size_t{24}, 16 + input.size() % 61}) {
    const auto windowed =
        json_detail::decodeReadingsInWindows(json_detail::readMoreFrom(input), input.size(), windowSize);
    if (!windowed) continue;
    if (!whole) throw PropertyFailure("decoded in windows of " + std::to_string(windowSize) + ", not whole");
    if (!sameValue(*windowed, *whole))
      throw PropertyFailure("windows of " + std::to_string(windowSize) + " decoded other readings");
  }
}

// An import streams a readings document, a block at a time, and decodes each reading on its own. Whatever
// it reads, at any block size, the whole-text decoder must read too, and to the same readings: the import
// never takes what the log itself would refuse.
inline void checkStream(std::string_view input, const std::optional<Readings>& whole) {
  for (const std::size_t blockSize : {1 + input.size() % 13, std::size_t{1} << 16}) {
    std::istringstream in{std::string(input)};
    Readings streamed;
    try {
      const auto reader = interop::readReadingsDocument(in, {.blockSize = blockSize});
      while (auto item = reader->next())
        streamed.readings.push_back(std::get<interop::IncomingReading>(*item).reading);
    } catch (const interop::ImportError&) {
      continue;
    }
    if (!whole) throw PropertyFailure("streamed in blocks of " + std::to_string(blockSize) + ", not whole");
    if (!sameValue(streamed, *whole))
      throw PropertyFailure("blocks of " + std::to_string(blockSize) + " streamed other readings");
  }
}

// Every date the decoder accepted is the double that the independent parser reads from its token: strtod,
// which rounds correctly and gives a signed zero below the smallest double, or for an integer token its
// exact value rounded, the sign of an integer's zero being lost.
inline void checkDates(std::string_view input, const Readings& decoded) {
  const auto document = nlohmann::json::parse(input, nullptr, false);
  if (document.is_discarded()) return;  // it refuses numbers beyond the range of a double anywhere
  // As in the decoder, the last of repeated members wins.
  const auto readings = document.value("readings", nlohmann::json());
  if (!readings.is_array() || readings.size() != decoded.readings.size())
    throw PropertyFailure("the independent parser found other readings");
  for (std::size_t i = 0; i < readings.size(); ++i) {
    const auto token = readings[i].value("date", nlohmann::json());
    if (!token.is_number())
      throw PropertyFailure("decoded reading " + std::to_string(i) + " has no number as its date");
    const auto expected = token.get<double>();
    const double date = decoded.readings[i]->date().timeIntervalSinceReferenceDate();
    if (date != expected || (token.is_number_float() && std::signbit(date) != std::signbit(expected))) {
      char shown[32];
      const auto written = std::to_chars(shown, shown + sizeof shown, date);
      throw PropertyFailure("date token " + token.dump() + " decoded as " + std::string(shown, written.ptr));
    }
  }
}

// Decodes `input` as T. A DecodingError is a clean rejection; any other exception escapes. A decoded input
// must be well-formed JSON, and its value must encode, decode again and compare equal, or PropertyFailure
// is thrown.
template <class T>
Outcome checkDecoding(std::string_view input) {
  if constexpr (std::is_same_v<T, Readings>) checkWindows(input);
  std::optional<T> first;
  try {
    first = json::decode<T>(input);
  } catch (const DecodingError&) {
  }
  if constexpr (std::is_same_v<T, Readings>) checkStream(input, first);
  if (!first) return Outcome::rejected;
  if (!isJson(input)) throw PropertyFailure("decoded text that is not JSON");
  if constexpr (std::is_same_v<T, Readings>) checkDates(input, *first);
  std::string encoded;
  try {
    encoded = json::encode(*first);
    if (sameValue(*first, json::decode<T>(encoded))) return Outcome::roundTripped;
  } catch (const EncodingError& error) {
    throw PropertyFailure(std::string("decoded, but does not encode: ") + error.what());
  } catch (const DecodingError& error) {
    throw PropertyFailure(std::string("own encoding does not decode: ") + error.what() +
                          "\nencoded: " + encoded);
  }
  throw PropertyFailure("the value changed in the round trip\nencoded: " + encoded);
}

}  // namespace cardiolith::fuzzing
