// The JSON readers stream their input: a FHIR Bundle read a few bytes at a time must skip what the whole
// text skips, and broken documents must fail with the same places named at any block size. That readings
// read a few bytes at a time come back whole is the round trip's.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "cardiolith/interop/fhir.hpp"
#include "cardiolith/interop/readings_document.hpp"
#include "cardiolith/model/json.hpp"
#include "interop/read_all.hpp"

namespace cardiolith::interop {
namespace {

using ::testing::HasSubstr;
using ::testing::Property;
using testing::readAll;
using ::testing::Throws;

TEST(ReadingsDocumentStream, BrokenDocumentsFailWithTheFaultNamedAtAnyBlockSize) {
  const std::string reading = R"({"id":"A","date":1,"systolic":120,"diastolic":80,"pulse":60})";
  const std::pair<std::string, std::string> cases[] = {
      // the document, and what its error names
      {R"({"readings":[)" + reading + R"(,{"id":"B","date":1,"systolic":1.5}]})",
       "readings[1].systolic: 1.5 is not an integer"},
      {R"({"readings":[)" + reading + " " + reading + "]}",
       "invalid JSON at byte 74: expected ',' or ']' after an element"},
      {R"({"readings":[)" + reading + ",tru]}", "readings[1], which starts at byte 74"},
      {R"({"readings":[{"id":"A)", "the file ends inside this string"},
      {R"({"readings":[]} x)", "unexpected 'x' after the document"},
      {R"({"other":[]})", "readings: missing"},
      {R"({"readings":{}})", "\"readings\" is not an array"},
      {R"({"other":[1,],"readings":[]})", "the value of \"other\""},
      {R"({"readings":[)" + reading + ",]}", "expected a value, found ']'"},
      {"[]", "expected an object ({) at the top of the document"},
  };
  for (const auto& [text, named] : cases) {
    EXPECT_THROW((void)json::decode<Readings>(text), DecodingError) << text;
    for (const std::size_t blockSize : {std::size_t{1}, std::size_t{7}, std::size_t{1} << 16}) {
      std::istringstream in(text);
      EXPECT_THAT([&] { (void)readAll(*readReadingsDocument(in, {.blockSize = blockSize})); },
                  Throws<ImportError>(Property(&ImportError::what, HasSubstr(named))))
          << text << " at blocks of " << blockSize;
    }
  }
}

TEST(FhirBundleStream, GivesTheSameItemsAtAnyBlockSize) {
  const std::string panel =
      R"({"resource":{"resourceType":"Observation","code":{"coding":[{"code":"85354-9"}]},)"
      R"("effectiveDateTime":"2025-01-12T08:12:00+01:00","note":[{"text":"\"]}, {"}],"component":[)"
      R"({"code":{"coding":[{"code":"8480-6"}]},"valueQuantity":{"value":128,"code":"mm[Hg]"}},)"
      R"({"code":{"coding":[{"code":"8462-4"}]},"valueQuantity":{"value":82,"code":"mm[Hg]"}},)"
      R"({"code":{"coding":[{"code":"8867-4"}]},"valueQuantity":{"value":71,"code":"/min"}}]}})";
  const std::string bundle = "{\n  \"resourceType\": \"Bundle\",\n  \"entry\": [" + panel +
                             R"(, {"resource":{"resourceType":"Patient"}}, {"fullUrl":"x"}, )" + panel + "]}";
  for (const std::size_t blockSize :
       {std::size_t{1}, std::size_t{5}, std::size_t{64}, std::size_t{1} << 16}) {
    std::istringstream in(bundle);
    std::string seen;
    for (const auto& item : readAll(*readFhir(in, {.blockSize = blockSize})))
      seen +=
          std::holds_alternative<IncomingReading>(item) ? "r" : std::get<SkippedRecord>(item).position + " ";
    EXPECT_EQ(seen, "rentry[1].resource entry[2].resource r") << "blocks of " << blockSize;
  }
}

}  // namespace
}  // namespace cardiolith::interop
