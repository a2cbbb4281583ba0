#include "cardiolith/model/tag.hpp"

#include <gtest/gtest.h>

#include <unordered_set>

#include "cardiolith/model/json.hpp"
#include "error_message.hpp"

namespace cardiolith {
namespace {

const UUID kID = *UUID::parse("6E3B1C2A-9F4D-4A8B-B7C6-D5E4F3A2B1C0");
const UUID kOtherID = *UUID::parse("00000000-0000-4000-8000-0000000000FF");

TEST(TagTest, EqualityComparesEveryFieldAndTextUnderCanonicalEquivalence) {
  const Tag tag{kID, "Caf\u00e9", "\u00e9"};
  EXPECT_NE(tag, (Tag{kOtherID, "Caf\u00e9", "\u00e9"}));
  EXPECT_NE(tag, (Tag{kID, "Cafe", "\u00e9"}));
  EXPECT_NE(tag, (Tag{kID, "Caf\u00e9", "e"}));
  const Tag decomposed{kID, "Cafe\u0301", "e\u0301"};
  EXPECT_EQ(tag, decomposed);
  EXPECT_EQ((std::unordered_set<Tag>{tag, decomposed}.size()), 1u) << "equal tags hash alike";
}

TEST(TagTest, JsonHasTheThreeMembersInOrderAndReadsBackOtherWritersForms) {
  const std::vector<Tag> tags{{kID, "", ""}, {kOtherID, "a \"quoted\"\n", "ff3b30"}, {kID, "dup", "x"}};
  const std::string text = json::encode(tags);
  EXPECT_EQ(text,
            R"([{"id":"6E3B1C2A-9F4D-4A8B-B7C6-D5E4F3A2B1C0","title":"","colorHex":""},)"
            R"({"id":"00000000-0000-4000-8000-0000000000FF","title":"a \"quoted\"\n","colorHex":"ff3b30"},)"
            R"({"id":"6E3B1C2A-9F4D-4A8B-B7C6-D5E4F3A2B1C0","title":"dup","colorHex":"x"}])");
  EXPECT_EQ(json::decode<std::vector<Tag>>(text), tags);
  EXPECT_EQ(json::encode(std::vector<Tag>{}), "[]");
  EXPECT_EQ(json::decode<Tag>(R"({"colorHex":"34c759","extra":[null],"title":"Run",)"
                              R"("id":"6e3b1c2a-9f4d-4a8b-b7c6-d5e4f3a2b1c0"})"),
            (Tag{kID, "Run", "34c759"}));
}

TEST(TagTest, JsonFailuresNameTheMemberAndTheFault) {
  const auto tagError = [](std::string text) {
    return testing::messageOf<DecodingError>([&] { (void)json::decode<Tag>(text); });
  };
  const auto listError = [](std::string text) {
    return testing::messageOf<DecodingError>([&] { (void)json::decode<std::vector<Tag>>(text); });
  };
  const std::string id = R"("id":"6E3B1C2A-9F4D-4A8B-B7C6-D5E4F3A2B1C0")";
  EXPECT_EQ(tagError("{" + id + R"(,"title":"a"})"), "colorHex: missing");
  EXPECT_EQ(tagError("{" + id + R"(,"title":null,"colorHex":"a"})"), "title: expected a string, found null");
  EXPECT_EQ(tagError(R"({"id":"6E3B1C2A","title":"a","colorHex":"b"})"), R"(id: "6E3B1C2A" is not a UUID)");
  EXPECT_EQ(tagError("[]"), "document: expected an object, found an array");
  EXPECT_EQ(listError("{}"), "document: expected an array, found an object");
  EXPECT_EQ(listError("[{" + id + R"(,"title":"a","colorHex":"b"},{"title":"c","colorHex":"d"}])"),
            "[1].id: missing");
  // The first fault in the order id, title, colorHex, whatever order the members come in.
  EXPECT_EQ(tagError(R"({"colorHex":1,"title":2})"), "id: missing");
  EXPECT_EQ(tagError(R"({"colorHex":1,"title":2,"id":"6E3B1C2A-9F4D-4A8B-B7C6-D5E4F3A2B1C0"})"),
            "title: expected a string, found a number");
  EXPECT_EQ(listError("[] x"),
            "invalid JSON at byte 3: the document must end with the ']' that closes its top-level array");
}

}  // namespace
}  // namespace cardiolith
