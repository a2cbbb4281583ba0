#include <gtest/gtest.h>

#include <set>

#include "cardiolith/model/json.hpp"
#include "error_message.hpp"

namespace cardiolith {
namespace {

const UUID kTagA = *UUID::parse("0C2D8F3E-7B1A-4E5C-9D60-1A2B3C4D5E6F");
const UUID kTagB = *UUID::parse("F0E1D2C3-B4A5-4968-8778-695A4B3C2D1E");
const Reading::HealthKitID kHealthKitID{*UUID::parse("AAAAAAAA-BBBB-4CCC-8DDD-EEEEEEEEEEEE"),
                                        *UUID::parse("12345678-9ABC-4DEF-8123-456789ABCDEF")};

TEST(ReadingsJsonTest, WritesMembersInOrderAndLeavesAbsentOnesOut) {
  const Readings readings{
      {Reading::decoded("bare", Date(1.5), 121, 79, 66, {}, {}, {}),
       Reading::decoded("full", Date(-2), 121, 79, 66, "", std::set{kTagB, kTagA}, kHealthKitID)}};
  EXPECT_EQ(json::encode(readings),
            R"({"readings":[)"
            R"({"id":"bare","date":1.5,"systolic":121,"diastolic":79,"pulse":66},)"
            R"({"id":"full","date":-2,"systolic":121,"diastolic":79,"pulse":66,"notes":"",)"
            R"("tagIDs":["0C2D8F3E-7B1A-4E5C-9D60-1A2B3C4D5E6F","F0E1D2C3-B4A5-4968-8778-695A4B3C2D1E"],)"
            R"("healthKitID":{"bloodPressureUUID":"AAAAAAAA-BBBB-4CCC-8DDD-EEEEEEEEEEEE",)"
            R"("heartRateUUID":"12345678-9ABC-4DEF-8123-456789ABCDEF"}}]})");
  EXPECT_EQ(json::encode(Readings{}), R"({"readings":[]})");
}

TEST(ReadingsJsonTest, ReadsTheFormsOtherWritersProduce) {
  const Readings readings = json::decode<Readings>(R"( {
    "extra": {"nested": [1, -2.5e-3, true, false, null, "x", {"deep": []}]},
    "readings": [
      {"pulse": 60, "diastolic": 70, "systolic": 110, "date": 600000000, "id": "a", "notes": "x",
       "notes": null, "tagIDs": null, "healthKitID": null, "unknown": [{}]},
      {"id": "b", "date": 6.5E8, "systolic": -0, "diastolic": 0, "pulse": 0, "\u0074agIDs":
       ["0c2d8f3e-7b1a-4e5c-9d60-1a2b3c4d5e6f", "0C2D8F3E-7B1A-4E5C-9D60-1A2B3C4D5E6F", "f0e1d2c3-b4a5-4968-8778-695a4b3c2d1e"],
       "healthKitID": {"heartRateUUID": "12345678-9abc-4def-8123-456789abcdef", "x": 1,
                       "bloodPressureUUID": "aaaaaaaa-bbbb-4ccc-8ddd-eeeeeeeeeeee"},
       "Notes": "keys are case-sensitive", "notes": "dropped", "notes": "the last one wins"}
    ]
  } )");
  // Compared as written, so that tag ids and notes count byte for byte.
  const Readings expected{{Reading::decoded("a", Date(6e8), 110, 70, 60, {}, {}, {}),
                           Reading::decoded("b", Date(6.5e8), 0, 0, 0, "the last one wins",
                                            std::set{kTagA, kTagB}, kHealthKitID)}};
  EXPECT_EQ(json::encode(readings), json::encode(expected));
}

// A document whose reading at `index` has the given text spliced in after its last member.
std::string withMember(std::string_view extra, int index = 0) {
  const std::string reading = R"({"id":"r","date":1,"systolic":120,"diastolic":80,"pulse":70)";
  std::string text = R"({"readings":[)";
  for (int i = 0; i < index; ++i) text += reading + "},";
  return text + reading + std::string(extra) + "}]}";
}

// A reading's fault names the member; text that is not JSON names the byte where it goes wrong.
TEST(ReadingsJsonTest, FailsWithAMessageNamingTheMemberOrTheByteAndTheFault) {
  const std::string uuid = "0C2D8F3E-7B1A-4E5C-9D60-1A2B3C4D5E6F";
  const std::string structure =
      ": broken structure: a comma, colon, brace, bracket or member name is missing or out of place";
  const std::pair<std::string, std::string> cases[] = {
      {R"({"readings":[{"id":"b","date":1,"systolic":1,"diastolic":1}]})", "readings[0].pulse: missing"},
      {withMember(R"(,"systolic":120.0)", 41), "readings[41].systolic: 120.0 is not an integer"},
      {withMember(R"(,"pulse":9223372036854775808)"),
       "readings[0].pulse: 9223372036854775808 is out of the signed 64-bit range"},
      {withMember(R"(,"pulse":null)"), "readings[0].pulse: expected an integer, found null"},
      {withMember(R"(,"date":"2024-01-01")"), "readings[0].date: expected a number, found a string"},
      {withMember(R"(,"date":1e400)"), "readings[0].date: 1e400 is out of the range of a double"},
      // Below the largest double as written, above it once rounded.
      {withMember(R"(,"date":0.99999999999999999999e309)"),
       "readings[0].date: 0.99999999999999999999e309 is out of the range of a double"},
      {withMember(R"(,"tagIDs":[")" + uuid + R"(",{}])"),
       "readings[0].tagIDs[1]: expected a UUID string, found an object"},
      {withMember(R"(,"tagIDs":[")" + uuid + R"(-and-a-long-tail"])"),
       R"(readings[0].tagIDs[0]: "0C2D8F3E-7B1A-4E5C-9D60-1A2B3C4D5E6F-an... is not a UUID)"},
      {withMember(R"(,"healthKitID":{"bloodPressureUUID":")" + uuid + R"("})", 12),
       "readings[12].healthKitID.heartRateUUID: missing"},
      {R"({"readings":[3]})", "readings[0]: expected an object, found a number"},
      {R"({"Readings":[]})", "readings: missing"},
      // withMember("") has its spliced text at byte 72.
      {"", "invalid JSON at byte 0: no JSON value"},
      {R"({"readings" []})", "invalid JSON at byte 12" + structure},
      {R"({"readings":[])",
       "invalid JSON at byte 13: the document must end with the '}' that closes its top-level object"},
      {R"({"readings":[]}})", "invalid JSON at byte 15: unexpected content after the top-level value"},
      {withMember(",\"notes\":\"caf\xC3\""), "invalid JSON at byte 85: invalid UTF-8"},
      {withMember(",\"notes\":\"line\nbreak\""),
       "invalid JSON at byte 86: control character in a string (it must be escaped)"},
      {R"({"readings":[], "x":"never closed})", "invalid JSON at byte 20: string is never closed"},
      {withMember(R"(,"notes":"\ud800")"), "invalid JSON at byte 81: invalid escape sequence in a string"},
      {withMember(R"(,"pulse":07)"), "invalid JSON at byte 81: malformed number"},
      // Ignored members are checked too.
      {withMember(R"(,"extra":[tru])"), "invalid JSON at byte 82: malformed literal (true, false or null)"},
      {withMember(R"(,"extra":1:2)"), "invalid JSON at byte 82" + structure},
      {withMember(R"(,"extra":)" + std::string(2000, '[') + std::string(2000, ']')),
       "invalid JSON at byte 1100: nested more than 1023 levels deep"},
  };
  for (const auto& [text, message] : cases)
    EXPECT_EQ(testing::messageOf<DecodingError>([&text = text] { (void)json::decode<Readings>(text); }),
              message)
        << text;
}

// The fault named is the first in the order the members are checked (id, date, systolic, diastolic, pulse,
// notes, tagIDs, healthKitID; inside healthKitID bloodPressureUUID, heartRateUUID), not in input order.
TEST(ReadingsJsonTest, NamesTheFirstFaultInCheckingOrderWhateverTheMemberOrder) {
  const std::string uuid = R"("0C2D8F3E-7B1A-4E5C-9D60-1A2B3C4D5E6F")";
  const std::string valid = R"("id":"r","date":1,"systolic":120,"diastolic":80,"pulse":70)";
  const std::pair<std::string, std::string> cases[] = {
      {R"({"pulse":"x","systolic":120,"diastolic":80,"date":1})", "readings[0].id: missing"},
      {R"({"healthKitID":3,"tagIDs":{},"notes":1,"pulse":1.5,"diastolic":"x","systolic":null,"date":"d","id":7})",
       "readings[0].id: expected a string, found a number"},
      {R"({"pulse":1.5,"diastolic":"x","id":"r"})", "readings[0].date: missing"},
      {R"({"pulse":1.5,"diastolic":"x","id":"r","date":1,"systolic":1})",
       "readings[0].diastolic: expected an integer, found a string"},
      {R"({"healthKitID":3,"tagIDs":[1],"notes":2,)" + valid + "}",
       "readings[0].notes: expected a string, found a number"},
      {R"({"healthKitID":3,"tagIDs":[)" + uuid + R"(,1],)" + valid + "}",
       "readings[0].tagIDs[1]: expected a UUID string, found a number"},
      {R"({"healthKitID":{"heartRateUUID":"bad","x":1},)" + valid + "}",
       "readings[0].healthKitID.bloodPressureUUID: missing"},
      {R"({"healthKitID":{"heartRateUUID":"bad","bloodPressureUUID":1},)" + valid + "}",
       "readings[0].healthKitID.bloodPressureUUID: expected a UUID string, found a number"},
      // The first fault of a repeated member is kept; a later good value does not clear it.
      {R"({"pulse":"x",)" + valid + "}", "readings[0].pulse: expected an integer, found a string"},
      // Text that is not JSON is named as such, wherever it lies.
      {R"({"pulse":"x","id":tru})", "invalid JSON at byte 31: malformed literal (true, false or null)"},
  };
  for (const auto& [reading, message] : cases) {
    const std::string text = R"({"readings":[)" + reading + "]}";
    EXPECT_EQ(testing::messageOf<DecodingError>([&] { (void)json::decode<Readings>(text); }), message)
        << reading;
  }
}

}  // namespace
}  // namespace cardiolith
