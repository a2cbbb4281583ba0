#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <stdexcept>
#include <string>

#include "bare_writer.hpp"
#include "document_generator.hpp"
#include "nlohmann_codec.hpp"
#include "simdjson_reader.hpp"

namespace cardiolith::bench {
namespace {

using Reader = std::function<std::vector<PlainReading>(std::string_view)>;

struct NamedReader {
  const char* name;
  Reader read;
};

const NamedReader kReaders[] = {{"simdjson", readDocumentWithSimdjson},
                                {"nlohmann", readDocumentWithNlohmann}};

constexpr const char* kUuidA = "96FEBCCC-8368-4D94-B24B-495782725DF5";
constexpr const char* kUuidB = "5e2f527f-0851-42f4-a3e9-218a60a6c599";

std::string document(const std::string& readingMembers) {
  return R"({"readings":[{"id":"a","date":1.5,"systolic":120,"diastolic":80,"pulse":60)" + readingMembers +
         "}]}";
}

TEST(ReferenceCodecsTest, EveryReaderReadsBackWhatTheWritersWrite) {
  const auto readings = generateReadings(2'000, 99);
  const std::string text = writeDocument(readings);
  EXPECT_EQ(writeDocumentWithNlohmann(readings), text);
  for (const auto& reader : kReaders) EXPECT_EQ(reader.read(text), readings) << reader.name;
}

TEST(ReferenceCodecsTest, ReadersAcceptWhatTheFormatAllows) {
  struct Case {
    const char* what;
    std::string text;
    std::function<void(const PlainReading&)> expect;
  };
  const Case cases[] = {
      {"null optional members are absent", document(R"(,"notes":null,"tagIDs":null,"healthKitID":null)"),
       [](const PlainReading& r) {
         EXPECT_FALSE(r.notes);
         EXPECT_FALSE(r.tagIDs);
         EXPECT_FALSE(r.healthKitID);
       }},
      {"empty notes and tags stay present", document(R"(,"notes":"","tagIDs":[])"),
       [](const PlainReading& r) {
         EXPECT_EQ(r.notes, "");
         EXPECT_EQ(r.tagIDs, std::vector<UuidBytes>{});
       }},
      {"unknown members are ignored",
       document(R"(,"mood":{"x":[1,2]},"healthKitID":{"bloodPressureUUID":")" + std::string(kUuidA) +
                R"(","heartRateUUID":")" + kUuidB + R"(","extra":true})"),
       [](const PlainReading& r) { ASSERT_TRUE(r.healthKitID); }},
      {"duplicate tags collapse, lower case parses",
       document(std::string(R"(,"tagIDs":[")") + kUuidA + R"(",")" + kUuidB + R"(",")" + kUuidA + R"("])"),
       [](const PlainReading& r) {
         ASSERT_TRUE(r.tagIDs);
         EXPECT_EQ(r.tagIDs->size(), 2u);
       }},
      {"a whole-number date and escaped text",
       R"({"readings":[{"pulse":-3,"date":-7,"id":"\u00e9\n","systolic":9223372036854775807,"diastolic":0}]})",
       [](const PlainReading& r) {
         EXPECT_EQ(r.date, -7.0);
         EXPECT_EQ(r.id, "\xC3\xA9\n");
         EXPECT_EQ(r.systolic, std::numeric_limits<std::int64_t>::max());
         EXPECT_EQ(r.pulse, -3);
       }},
  };
  for (const auto& reader : kReaders) {
    for (const auto& c : cases) {
      SCOPED_TRACE(std::string(reader.name) + ": " + c.what);
      const auto readings = reader.read(c.text);
      ASSERT_EQ(readings.size(), 1u);
      c.expect(readings.front());
    }
  }
}

TEST(ReferenceCodecsTest, ReadersRejectWhatTheFormatForbidsNamingTheMember) {
  struct Case {
    const char* what;
    std::string text;
    const char* named;  // in the message, or nullptr for a whole-document failure
  };
  const std::string good = document("");
  const Case cases[] = {
      {"not JSON", "{\"readings\":[", nullptr},
      {"top level not an object", "[]", nullptr},
      {"content after the document", R"({"readings":[]} {})", nullptr},
      {"no readings member", R"({"reading":[]})", "readings"},
      {"missing pulse", R"({"readings":[{"id":"a","date":1,"systolic":1,"diastolic":2}]})", "pulse"},
      {"null required member", R"({"readings":[{"id":null,"date":1,"systolic":1,"diastolic":2,"pulse":3}]})",
       "id"},
      {"fraction in an integer", document("").replace(good.find("120"), 3, "120.5"), "systolic"},
      {"integer beyond 64 bits", document("").replace(good.find("80"), 2, "9223372036854775808"),
       "diastolic"},
      {"date as a string", document("").replace(good.find("1.5"), 3, "\"1.5\""), "date"},
      {"bad UUID among tags",
       document(std::string(R"(,"tagIDs":[")") + kUuidA + R"(","{)" + kUuidA + R"(}"])"), "tagIDs"},
      {"health ids without heart rate",
       document(std::string(R"(,"healthKitID":{"bloodPressureUUID":")") + kUuidA + R"("})"), "heartRateUUID"},
  };
  for (const auto& reader : kReaders) {
    for (const auto& c : cases) {
      SCOPED_TRACE(std::string(reader.name) + ": " + c.what);
      try {
        reader.read(c.text);
        ADD_FAILURE() << "accepted " << c.text;
      } catch (const std::exception& error) {
        if (c.named != nullptr) {
          EXPECT_THAT(error.what(), ::testing::HasSubstr(c.named));
        }
      }
    }
  }
}

TEST(ReferenceCodecsTest, WritersEscapeTextAndRefuseWhatCannotBeReadBack) {
  PlainReading reading;
  reading.id = "q\"b\\s/\x01\t\xF0\x9F\x92\x8A";
  reading.date = 0.1;
  reading.notes = "caf\xC3\xA9";
  const std::string expected = R"({"readings":[{"id":"q\"b\\s/\u0001\t)"
                               "\xF0\x9F\x92\x8A"
                               R"(","date":0.1,"systolic":0,"diastolic":0,"pulse":0,"notes":"caf)"
                               "\xC3\xA9"
                               R"("}]})";
  EXPECT_EQ(writeDocument({reading}), expected);
  EXPECT_EQ(writeDocumentWithNlohmann({reading}), expected);

  for (const char* invalid : {"\xC3", "\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\x80"}) {
    PlainReading bad = reading;
    bad.notes = invalid;
    EXPECT_ANY_THROW(writeDocument({bad})) << "bare writer accepted an invalid sequence";
    EXPECT_ANY_THROW(writeDocumentWithNlohmann({bad})) << "nlohmann writer accepted an invalid sequence";
  }
  PlainReading notFinite = reading;
  notFinite.date = std::numeric_limits<double>::quiet_NaN();
  EXPECT_THROW(writeDocument({notFinite}), std::invalid_argument);
  EXPECT_THROW(writeDocumentWithNlohmann({notFinite}), std::invalid_argument);
}

TEST(ReferenceCodecsTest, UuidTextRoundTripsAndOnlyTheCanonicalFormParses) {
  const auto parsed = parseUuid(kUuidB);
  ASSERT_TRUE(parsed);
  EXPECT_EQ(uuidString(*parsed), "5E2F527F-0851-42F4-A3E9-218A60A6C599");
  for (const char* bad : {"5E2F527F08514-2F4-A3E9-218A60A6C599", "5E2F527F-0851-42F4-A3E9-218A60A6C59",
                          "{5E2F527F-0851-42F4-A3E9-218A60A6C59}", "5E2F527F-0851-42F4-A3E9-218A60A6C59G"}) {
    EXPECT_FALSE(parseUuid(bad)) << bad;
  }
}

}  // namespace
}  // namespace cardiolith::bench
