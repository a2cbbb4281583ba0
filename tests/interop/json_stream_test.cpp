// The JSON readers stream their input: a readings document or a FHIR Bundle read a few bytes at a time
// must give what the whole text gives, and broken documents must fail with the same places named.
#include <gtest/gtest.h>

#include <random>
#include <sstream>

#include "cardiolith/interop/fhir.hpp"
#include "cardiolith/interop/readings_document.hpp"
#include "cardiolith/model/json.hpp"
#include "interop/read_all.hpp"

namespace cardiolith::interop {
namespace {

using testing::readAll;

ReadingList streamedReadings(const std::string& text, std::size_t blockSize) {
  std::istringstream in(text);
  ReadingList readings;
  for (auto& item : readAll(*readReadingsDocument(in, {.blockSize = blockSize})))
    readings.push_back(std::get<IncomingReading>(item).reading);
  return readings;
}

// Whitespace after structural characters outside strings, as a pretty-printer would put it.
std::string spacedOut(const std::string& compact, std::mt19937& random) {
  static const std::string kSpaces[] = {"", " ", "\n  ", "\r\n\t"};
  std::string spaced;
  bool inString = false;
  for (std::size_t i = 0; i < compact.size(); ++i) {
    const char c = compact[i];
    spaced += c;
    if (inString) {
      if (c == '\\') spaced += compact[++i];
      if (c == '"') inString = false;
    } else if (c == '"') {
      inString = true;
    } else if (c == ',' || c == ':' || c == '[' || c == '{') {
      spaced += kSpaces[random() % 4];
    }
  }
  return spaced;
}

TEST(ReadingsDocumentStream, GivesWhatTheWholeTextGivesAtAnyBlockSize) {
  const std::vector<std::string> notes = {
      "plain", "\"quoted\" },{ \"x\":[", "back\\slash ]", "two\nlines", "ö 心 \u2028", "{\"readings\":[]}"};
  for (std::uint32_t seed = 0; seed < 40; ++seed) {
    std::mt19937 random(seed);
    ReadingList readings;
    for (std::size_t count = random() % 12; count > 0; --count) {
      std::optional<std::string> note;
      if (random() % 3 != 0) note = notes[random() % notes.size()] + notes[random() % notes.size()];
      std::optional<std::set<UUID>> tags;
      if (random() % 2 == 0) tags = std::set<UUID>{UUID::random()};
      readings.push_back(std::make_shared<Reading>(
          UUID::random().uuidString(), Date(700'000'000.0 + static_cast<double>(random() % 100'000'000)), 120,
          80, 60 + random() % 40, note, std::nullopt, tags));
    }
    std::string text = json::encode(Readings{readings});
    // Members the reader passes over, before or after the readings.
    if (seed % 3 == 1) text.insert(1, R"("note":"a \"]\" inside",)");
    if (seed % 3 == 2) text.insert(text.size() - 1, R"(,"extra":{"list":[1,"}",{"x":null}]})");
    text = spacedOut(text, random);
    const std::string whole = json::encode(json::decode<Readings>(text));
    const std::size_t blockSize = 1 + random() % 200;
    EXPECT_EQ(json::encode(Readings{streamedReadings(text, blockSize)}), whole)
        << "seed " << seed << ", blocks of " << blockSize << ":\n"
        << text;
  }
}

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
      try {
        (void)streamedReadings(text, blockSize);
        ADD_FAILURE() << text << " read without error at blocks of " << blockSize;
      } catch (const ImportError& error) {
        EXPECT_NE(std::string(error.what()).find(named), std::string::npos) << error.what();
      }
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
    for (const auto& item : readAll(*readFhir(in, {.blockSize = blockSize}))) {
      if (const auto* reading = std::get_if<IncomingReading>(&item)) {
        EXPECT_EQ(reading->reading->notes(), "\"]}, {");
        seen += "r";
      } else {
        seen += std::get<SkippedRecord>(item).position + " ";
      }
    }
    EXPECT_EQ(seen, "rentry[1].resource entry[2].resource r") << "blocks of " << blockSize;
  }
}

}  // namespace
}  // namespace cardiolith::interop
