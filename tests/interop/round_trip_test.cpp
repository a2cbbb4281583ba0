#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <sstream>

#include "cardiolith/interop/delimited.hpp"
#include "cardiolith/interop/fhir.hpp"
#include "cardiolith/interop/import_plan.hpp"
#include "cardiolith/interop/readings_document.hpp"
#include "cardiolith/model/json.hpp"
#include "support/scoped_time_zone.hpp"

namespace cardiolith::interop {
namespace {

// Texts that break naive writers and readers: separators, quotes, line ends, formula starts, apostrophes
// that are the user's own, escapes of the tag list, JSON's structure, non-ASCII.
const std::vector<std::string> kHostile = {
    "plain",
    "a, b; c\td",
    "\"quoted\"",
    "two\nlines",
    "cr\r\nlf",
    "=1+2",
    "+49 123",
    "-",
    "@home",
    "\tindented",
    "'hello",
    "'=kept",
    "''",
    "back\\slash;semi",
    "Blutdruck ö ü 心",
    " spaced ",
    "\r",
    "ends with \"",
    "\"},{ \"x\":[ ]",
    "{\"readings\":[]}",
    "\u2028",
};

struct Sample {
  ReadingList readings;
  std::vector<Tag> tags;
};

Sample randomSample(std::uint32_t seed) {
  std::mt19937 random(seed);
  const auto pick = [&](std::size_t size) {
    return std::uniform_int_distribution<std::size_t>(0, size - 1)(random);
  };
  Sample sample;
  for (std::size_t i = 0; i < kHostile.size(); ++i)
    sample.tags.push_back({UUID::random(), kHostile[i] + std::to_string(i), "ff0000"});
  for (int i = 0; i < 60; ++i) {
    std::optional<std::string> notes;
    if (pick(4) != 0) notes = kHostile[pick(kHostile.size())] + kHostile[pick(kHostile.size())];
    std::optional<std::set<UUID>> tagIDs;
    if (pick(3) != 0) tagIDs.emplace();
    for (std::size_t k = tagIDs ? pick(4) : 0; k > 0; --k)
      tagIDs->insert(sample.tags[pick(sample.tags.size())].id);
    const double seconds = 700'000'000.0 + static_cast<double>(pick(100'000'000));
    const auto systolic = static_cast<std::int64_t>(100 + pick(100));
    sample.readings.push_back(
        std::make_shared<Reading>(UUID::random().uuidString(), Date(seconds), systolic, systolic - 30,
                                  static_cast<std::int64_t>(40 + pick(100)), notes, std::nullopt, tagIDs));
  }
  return sample;
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

enum class Format { csv, tsv, json, fhir };

std::string exported(Format format, const Sample& sample, std::mt19937& random) {
  if (format == Format::json) {
    // Spaced out, with members the reader passes over before and after the readings.
    std::string text = json::encode(Readings{sample.readings});
    text.insert(1, R"("note":"a \"]\" inside",)");
    text.insert(text.size() - 1, R"(,"extra":{"list":[1,"}",{"x":null}]})");
    return spacedOut(text, random);
  }
  if (format == Format::fhir) return encodeFhirBundle(sample.readings);
  std::ostringstream out;
  writeDelimited(out, sample.readings, sample.tags, {format == Format::csv ? ',' : '\t', {}});
  return out.str();
}

std::unique_ptr<ReadingReader> reader(Format format, std::istream& in, std::size_t blockSize) {
  if (format == Format::json) return readReadingsDocument(in, {.blockSize = blockSize});
  if (format == Format::fhir) return readFhir(in, {.blockSize = blockSize});
  return readDelimited(in, {});
}

class RoundTrip : public ::testing::TestWithParam<Format> {};

// The JSON formats are read a few bytes at a time as well: 1, 2, 4 ... 128.
TEST_P(RoundTrip, HostileReadingsComeBackIntoAnEmptyLog) {
  const cardiolith::testing::ScopedTimeZone zone("America/New_York");
  for (std::uint32_t seed = 1; seed <= 8; ++seed) {
    const Sample sample = randomSample(seed);
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    std::istringstream in(exported(GetParam(), sample, random));
    auto source = reader(GetParam(), in, std::size_t{1} << (seed - 1));
    ImportPlanner planner({}, sample.tags, {});
    planner.takeAll(*source);
    const ImportPlan& plan = planner.plan();
    ASSERT_TRUE(plan.isClean()) << (plan.refused.empty() ? "unknown tags" : plan.refused[0].reason);
    ASSERT_EQ(plan.added.size(), sample.readings.size());
    for (std::size_t i = 0; i < plan.added.size(); ++i) {
      const Reading& original = *sample.readings[i];
      const Reading& back = *plan.added[i];
      SCOPED_TRACE("reading " + std::to_string(i));
      EXPECT_EQ(back.id(), original.id());
      // Tables keep dates to the minute; the document keeps them exactly.
      const double minute = std::floor(original.date().timeIntervalSinceReferenceDate() / 60) * 60;
      const bool toTheMinute = GetParam() == Format::csv || GetParam() == Format::tsv;
      EXPECT_EQ(back.date(), toTheMinute ? Date(minute) : original.date());
      EXPECT_EQ(back.systolic(), original.systolic());
      EXPECT_EQ(back.diastolic(), original.diastolic());
      EXPECT_EQ(back.pulse(), original.pulse());
      EXPECT_EQ(back.notes(), original.notes());
      // A table cannot tell no tag set from an empty one; the document can; FHIR has no tags.
      if (GetParam() == Format::fhir) continue;
      if (GetParam() == Format::json) {
        EXPECT_EQ(back.tagIDs(), original.tagIDs());
      } else {
        EXPECT_EQ(back.tagIDs().value_or(std::set<UUID>{}), original.tagIDs().value_or(std::set<UUID>{}));
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Formats, RoundTrip,
                         ::testing::Values(Format::csv, Format::tsv, Format::json, Format::fhir));

TEST(DelimitedWriter, GuardsFormulaCellsAndQuotesAsRfc4180) {
  const cardiolith::testing::ScopedTimeZone zone("Etc/UTC");
  const auto reading = std::make_shared<Reading>("ID-1", Date::fromTimeIntervalSince1970(1736665920), 128, 82,
                                                 71, "=HYPERLINK(\"x\"), y", std::nullopt, std::nullopt);
  std::ostringstream out;
  writeDelimited(out, {reading}, {}, {',', {}});
  EXPECT_EQ(out.str(),
            "Date,Systolic,Diastolic,Pulse,Category,Tags,Notes,ID\r\n"
            "2025-01-12 07:12 +00:00,128,82,71,high,,\"'=HYPERLINK(\"\"x\"\"), y\",ID-1\r\n");
}

}  // namespace
}  // namespace cardiolith::interop
