#include <gtest/gtest.h>

#include "cardiolith/model/json.hpp"

namespace cardiolith {
namespace {

const UUID kID = *UUID::parse("6E3B1C2A-9F4D-4A8B-B7C6-D5E4F3A2B1C0");
const UUID kOtherID = *UUID::parse("00000000-0000-4000-8000-0000000000FF");

std::string decodingError(void (*decode)(std::string_view), std::string_view text) {
  try {
    decode(text);
  } catch (const DecodingError& error) {
    return error.what();
  }
  return "decoded without error";
}
void decodeTag(std::string_view text) { json::decode<Tag>(text); }
void decodeTags(std::string_view text) { json::decode<std::vector<Tag>>(text); }

TEST(TagsJsonTest, WritesTheThreeMembersInOrder) {
  EXPECT_EQ(json::encode(Tag{kID, "Morning", "007aff"}),
            R"({"id":"6E3B1C2A-9F4D-4A8B-B7C6-D5E4F3A2B1C0","title":"Morning","colorHex":"007aff"})");
  EXPECT_EQ(json::encode(std::vector<Tag>{}), "[]");
  EXPECT_EQ(json::encode(std::vector<Tag>{{kID, "", ""}, {kOtherID, "b", "c"}}),
            R"([{"id":"6E3B1C2A-9F4D-4A8B-B7C6-D5E4F3A2B1C0","title":"","colorHex":""},)"
            R"({"id":"00000000-0000-4000-8000-0000000000FF","title":"b","colorHex":"c"}])");
}

TEST(TagsJsonTest, RoundTripsAndReadsOtherWritersForms) {
  const std::vector<Tag> tags{
      {kID, "", ""}, {kOtherID, "Caf\u00e9 \"quoted\"\n", "ff3b30"}, {kID, "dup", "x"}};
  EXPECT_EQ(json::decode<std::vector<Tag>>(json::encode(tags)), tags);
  EXPECT_EQ(json::decode<Tag>(json::encode(tags[1])), tags[1]);
  EXPECT_EQ(json::decode<Tag>(R"({"colorHex":"34c759","extra":[null],"title":"Run",)"
                              R"("id":"6e3b1c2a-9f4d-4a8b-b7c6-d5e4f3a2b1c0"})"),
            (Tag{kID, "Run", "34c759"}));
}

TEST(TagsJsonTest, FailsWithAMessageNamingTheFault) {
  const std::string id = R"("id":"6E3B1C2A-9F4D-4A8B-B7C6-D5E4F3A2B1C0")";
  EXPECT_EQ(decodingError(decodeTag, "{" + id + R"(,"title":"a"})"), "colorHex: missing");
  EXPECT_EQ(decodingError(decodeTag, "{" + id + R"(,"title":null,"colorHex":"a"})"),
            "title: expected a string, found null");
  EXPECT_EQ(decodingError(decodeTag, R"({"id":"6E3B1C2A","title":"a","colorHex":"b"})"),
            R"(id: "6E3B1C2A" is not a UUID)");
  EXPECT_EQ(decodingError(decodeTag, "[]"), "document: expected an object, found an array");
  EXPECT_EQ(decodingError(decodeTags, "{}"), "document: expected an array, found an object");
  EXPECT_EQ(decodingError(decodeTags, R"([{)" + id + R"(,"title":"a","colorHex":"b"},"tag"])"),
            "[1]: expected an object, found a string");
  EXPECT_EQ(decodingError(decodeTags,
                          R"([{)" + id + R"(,"title":"a","colorHex":"b"},{"title":"c","colorHex":"d"}])"),
            "[1].id: missing");
  EXPECT_EQ(decodingError(decodeTags, "[] x"),
            "invalid JSON at byte 3: the document must end with the ']' that closes its top-level array");
  EXPECT_EQ(decodingError(decodeTags, "[]]"),
            "invalid JSON at byte 2: unexpected content after the top-level value");
}

}  // namespace
}  // namespace cardiolith
