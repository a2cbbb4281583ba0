#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

#include "../../fuzz/json_decoding_properties.hpp"
#include "cardiolith/model/json.hpp"
#include "error_message.hpp"
#include "model/readings_decoding.hpp"

namespace cardiolith {
namespace {

using fuzzing::sameValue;
using json_detail::decodeReadingsInPlace;
using json_detail::decodeReadingsInWindows;
using testing::messageOf;

const UUID kTag = *UUID::parse("0C2D8F3E-7B1A-4E5C-9D60-1A2B3C4D5E6F");
const Reading::HealthKitID kHealthKitID{*UUID::parse("AAAAAAAA-BBBB-4CCC-8DDD-EEEEEEEEEEEE"),
                                        *UUID::parse("12345678-9ABC-4DEF-8123-456789ABCDEF")};

// Notes that look like the boundary between two readings, so that a window's end is guessed wrong.
const std::optional<std::string> kNotes[] = {std::nullopt,  "a},{b", R"(said "},{" twice },{)", "} ,\n {",
                                             "plain words", "",      "caf\u00e9 \U0001F600"};

std::string canonicalDocument(int count) {
  Readings readings;
  for (int index = 0; index < count; ++index) {
    readings.readings.push_back(
        Reading::decoded("id-" + std::to_string(index), Date(index * 1.25), 110 + index, 70 + index % 9,
                         60 + index % 7, kNotes[static_cast<std::size_t>(index) % std::size(kNotes)],
                         index % 3 == 0 ? std::optional(std::set{kTag}) : std::nullopt,
                         index % 4 == 0 ? std::optional(kHealthKitID) : std::nullopt));
  }
  return json::encode(readings);
}

// The same document with spaces around every reading boundary (inside notes too, which is harmless: both
// decoders read the same text).
std::string spacedDocument(int count) {
  std::string text = " {\n \"readings\" :\t[\r\n" + canonicalDocument(count).substr(13);
  for (std::size_t at = 0; (at = text.find("},{", at)) != std::string::npos; at += 3)
    text.replace(at, 3, "}  ,   {");
  text.insert(text.size() - 2, "\n ");
  return text + "\n";
}

struct Windowed {
  std::optional<Readings> readings;
  std::size_t largestRead = 0;  // the most bytes the decoder asked for at once
};

Windowed decodeInWindows(std::string_view text, std::size_t windowSize) {
  Windowed result;
  const json_detail::ReadMore copy = json_detail::readMoreFrom(text);
  const json_detail::ReadMore readMore = [&](char* into, std::size_t capacity) {
    result.largestRead = std::max(result.largestRead, capacity);
    return copy(into, capacity);
  };
  result.readings = decodeReadingsInWindows(readMore, text.size(), windowSize);
  return result;
}

// Read in place, the text having the spare capacity the decoder needs. The faults it names are compared
// with those of json::decode, which reads a padded copy: both must count offsets from the text's start.
Readings decodeWhole(std::string_view text) {
  std::string bytes(text);
  bytes.reserve(bytes.size() + json_detail::kReadPadding);
  return decodeReadingsInPlace(bytes);
}

constexpr std::size_t kWindowSizes[] = {32, 100, 333, 4096};

TEST(ReadingsWindowsTest, DecodesTheUsualShapeAsTheWholeTextDoes) {
  const std::string hugeNote = std::string(R"({"readings":[{"id":"a","date":1,"systolic":2,"diastolic":3,)") +
                               R"("pulse":4,"notes":")" + std::string(5000, 'n') + R"("},)" +
                               canonicalDocument(3).substr(13);
  const struct {
    const char* name;
    std::string text;
    std::size_t boundedFrom;  // windows from this size on hold every reading without growing
  } cases[] = {
      {"canonical", canonicalDocument(60), 4096},  {"spaced", spacedDocument(60), 4096},
      {"empty", R"({"readings":[]})", 32},         {"empty, spaced", " { \"readings\" : [\n] }\n", 32},
      {"one reading", canonicalDocument(1), 4096}, {"a reading larger than any window", hugeNote, SIZE_MAX},
  };
  for (const auto& testCase : cases) {
    const Readings expected = decodeWhole(testCase.text);
    for (const std::size_t windowSize : kWindowSizes) {
      SCOPED_TRACE(std::string(testCase.name) + ", window " + std::to_string(windowSize));
      const Windowed windowed = decodeInWindows(testCase.text, windowSize);
      ASSERT_TRUE(windowed.readings.has_value());
      EXPECT_TRUE(sameValue(*windowed.readings, expected));
      if (windowSize >= testCase.boundedFrom) {
        EXPECT_LE(windowed.largestRead, windowSize);
      }
    }
    EXPECT_TRUE(sameValue(json::decode<Readings>(testCase.text), expected));
  }
}

// Any other shape is left to the whole-text decoder, which reads it or names its fault.
TEST(ReadingsWindowsTest, LeavesOtherShapesAndBrokenDocumentsToTheWholeText) {
  const std::string reading = R"({"id":"a","date":1,"systolic":2,"diastolic":3,"pulse":4})";
  const std::string document = canonicalDocument(40);
  // Replaces the occurrence of `from` that comes `ordinal`th, well inside the document.
  const auto breakReading = [&](std::string_view from, std::string_view to, int ordinal) {
    std::string text = document;
    std::size_t at = text.find(from);
    for (int found = 1; found < ordinal; ++found) at = text.find(from, at + 1);
    EXPECT_NE(at, std::string::npos) << from;
    return text.replace(at, from.size(), to);
  };
  const std::string cases[] = {
      R"({"other":1,"readings":[)" + reading + "]}",
      R"({"readings":[)" + reading + R"(],"other":1})",
      R"({"read\u0069ngs":[)" + reading + "]}",
      R"({"readings":[)" + reading + R"(],"readings":[]})",
      R"({"readings":[)" + reading + R"(],"other":[]})",
      R"({"readings":[)" + reading + "]}}",
      R"({"readings":[)" + reading + "]} x",
      R"({"readings":[)" + reading + "}",
      R"({"readings":[)" + reading + "," + reading,
      R"({"readings":[)" + reading + ",]}",
      R"({"readings":[1,2]})",
      "[]",
      breakReading(R"("pulse":)", R"("pulsf":)", 30),
      breakReading("-BBBB-", "-BBBG-", 7),
      breakReading(R"("notes":"a},{b")", R"("notes":"a},{b)", 3),
      breakReading(R"("notes":"plain)", "\"notes\":\"pl\xC3", 3),
  };
  for (const auto& text : cases) {
    SCOPED_TRACE(text.size() < 200 ? text : "document " + std::to_string(&text - cases));
    for (const std::size_t windowSize : kWindowSizes) {
      EXPECT_FALSE(decodeInWindows(text, windowSize).readings.has_value()) << "window " << windowSize;
    }
    const std::string expected = messageOf<DecodingError>([&] { decodeWhole(text); });
    if (expected == "no error") {
      EXPECT_TRUE(sameValue(json::decode<Readings>(text), decodeWhole(text)));
    } else {
      EXPECT_EQ(messageOf<DecodingError>([&] { (void)json::decode<Readings>(text); }), expected);
    }
  }
}

// A window's array is one level above the document's, so nesting is limited as in the whole document.
TEST(ReadingsWindowsTest, LimitsNestingAsTheWholeTextDoes) {
  int decodedWhole = 0;
  for (int depth = 1018; depth <= 1026; ++depth) {
    const std::string text = R"({"readings":[{"id":"a","date":1,"systolic":2,"diastolic":3,"pulse":4,"x":)" +
                             std::string(static_cast<std::size_t>(depth), '[') +
                             std::string(static_cast<std::size_t>(depth), ']') + "}]}";
    const bool whole = messageOf<DecodingError>([&] { decodeWhole(text); }) == "no error";
    decodedWhole += whole;
    EXPECT_EQ(decodeInWindows(text, 64).readings.has_value(), whole) << "depth " << depth;
  }
  EXPECT_GT(decodedWhole, 0);
  EXPECT_LT(decodedWhole, 9);
}

}  // namespace
}  // namespace cardiolith
