#include <gtest/gtest.h>

#include <limits>

#include "cardiolith/model/json.hpp"
#include "error_message.hpp"

namespace cardiolith {
namespace {

const UUID kID = *UUID::parse("6E3B1C2A-9F4D-4A8B-B7C6-D5E4F3A2B1C0");
constexpr std::string_view kTagPrefix = R"({"id":"6E3B1C2A-9F4D-4A8B-B7C6-D5E4F3A2B1C0","title":)";

// The JSON string a tag's title is written as.
std::string encodedTitle(const std::string& title) {
  const std::string text = json::encode(Tag{kID, title, ""});
  return text.substr(kTagPrefix.size(), text.size() - kTagPrefix.size() - sizeof(R"(,"colorHex":""})") + 1);
}

std::string titleRoundTrip(const std::string& title) {
  return json::decode<Tag>(json::encode(Tag{kID, title, ""})).title;
}

TEST(JsonTextTest, WritesTheStandardEscapesAndEverythingElseAsItIs) {
  const std::string title = std::string("q\"b\\c\b\f\n\r\t") + '\0' + "\x01\x1f\x7f/\u00e9\U0001F600";
  EXPECT_EQ(encodedTitle(title), "\"q\\\"b\\\\c\\b\\f\\n\\r\\t\\u0000\\u0001\\u001f\x7f/\u00e9\U0001F600\"");
}

TEST(JsonTextTest, ReadsEscapesFromOtherWritersByteForByte) {
  const Tag tag = json::decode<Tag>(
      R"({"id":"6E3B1C2A-9F4D-4A8B-B7C6-D5E4F3A2B1C0","title":"\/\u00e9\u00E9\ud83d\ude00\u0041\"\\\b\f\n\r\t\u0000",)"
      R"("colorHex":"e\u0301"})");
  EXPECT_EQ(tag.title, std::string("/\u00e9\u00e9\U0001F600A\"\\\b\f\n\r\t") + '\0');
  EXPECT_EQ(tag.colorHex, "e\u0301") << "decoding keeps text as written, it does not normalise it";
}

TEST(JsonTextTest, EscapesLandAtTheRightPlaceWhateverTheirOffset) {
  // The escape scanner works on eight bytes at a time; put each kind of byte at every offset of strings
  // around that width.
  const std::string specials[] = {"\"", "\\",     "\n",     std::string(1, '\0'), "\x1f", "\x7f", " ",
                                  "/",  "\u00e9", "\u20ac", "\U0001F600"};
  for (const std::string& special : specials) {
    for (std::size_t length = 0; length <= 18; ++length) {
      for (std::size_t position = 0; position <= length; ++position) {
        const std::string title = std::string(position, 'a') + special + std::string(length - position, 'b');
        for (const char c : encodedTitle(title))
          ASSERT_GE(static_cast<unsigned char>(c), 0x20) << "raw control";
        ASSERT_EQ(titleRoundTrip(title), title) << "special " << +special[0] << " at " << position;
      }
    }
  }
}

// A document whose reading at `index` has this id, date and notes, after good ones.
Readings documentWith(std::size_t index, std::string id, double date, std::optional<std::string> notes) {
  Readings readings;
  for (std::size_t i = 0; i < index; ++i)
    readings.readings.push_back(Reading::decoded("ok", Date(1), 1, 2, 3, {}, {}, {}));
  readings.readings.push_back(Reading::decoded(std::move(id), Date(date), 1, 2, 3, std::move(notes), {}, {}));
  return readings;
}

template <class T>
std::string encodingError(const T& value) {
  return testing::messageOf<EncodingError>([&] { (void)json::encode(value); });
}

TEST(JsonTextTest, RefusesToWriteWhatWouldNotReadBack) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(encodingError(documentWith(2, "x", std::numeric_limits<double>::quiet_NaN(), {})),
            "readings[2].date: nan is not a finite number");
  EXPECT_EQ(encodingError(documentWith(0, "x", kInfinity, {})),
            "readings[0].date: inf is not a finite number");
  EXPECT_EQ(encodingError(documentWith(1, "x", -kInfinity, {})),
            "readings[1].date: -inf is not a finite number");
  EXPECT_EQ(encodingError(Readings{{documentWith(0, "x", 1, {}).readings[0], nullptr}}),
            "readings[1]: a null pointer, not a reading");

  const std::pair<std::string, std::size_t> invalidTexts[] = {
      {"abc\xff", 3}, {"hello\xC3(", 5}, {"\xC3\xA9\xED\xA0\x80", 2} /* a surrogate */, {"ab\xE2\x82", 2}};
  for (const auto& [text, offset] : invalidTexts) {
    const std::string suffix = ": invalid UTF-8 at byte " + std::to_string(offset);
    EXPECT_EQ(encodingError(documentWith(0, text, 1, {})), "readings[0].id" + suffix);
    EXPECT_EQ(encodingError(documentWith(3, "x", 1, text)), "readings[3].notes" + suffix);
  }
  EXPECT_EQ(encodingError(Tag{kID, "0\xC3", "ok"}), "title: invalid UTF-8 at byte 1");
  EXPECT_EQ(encodingError(std::vector<Tag>{{kID, "ok", "ok"}, {kID, "ok", "\xff"}}),
            "[1].colorHex: invalid UTF-8 at byte 0");
}

}  // namespace
}  // namespace cardiolith
