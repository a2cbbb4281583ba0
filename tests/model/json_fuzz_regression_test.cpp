// Replays the fuzzers' kept inputs through the normal build: the seed corpus and every input a fuzzer
// once crashed on. Each must be rejected with DecodingError, or be JSON and survive the round trip.

#include <gtest/gtest.h>

#include <algorithm>
#include <exception>
#include <filesystem>
#include <ostream>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

#include "../../fuzz/json_decoding_properties.hpp"
#include "platform/file_io.hpp"

namespace cardiolith {
namespace {

namespace fs = std::filesystem;
using fuzzing::Outcome;

const fs::path fuzzFolder = fs::path(__FILE__).parent_path().parent_path().parent_path() / "fuzz";

struct FuzzTarget {
  std::string name;
  Outcome (*check)(std::string_view);
  friend void PrintTo(const FuzzTarget& target, std::ostream* out) { *out << target.name; }
};

std::vector<fs::path> keptInputs(const std::string& target) {
  std::vector<fs::path> inputs;
  for (const char* kind : {"corpus", "regressions"}) {
    const auto folder = fuzzFolder / kind / target;
    if (!fs::is_directory(folder)) continue;
    for (const auto& entry : fs::directory_iterator(folder)) {
      if (entry.is_regular_file()) inputs.push_back(entry.path());
    }
  }
  std::sort(inputs.begin(), inputs.end());
  return inputs;
}

bool startsWith(const std::string& text, std::string_view prefix) { return text.rfind(prefix, 0) == 0; }

class JsonFuzzRegressionTest : public ::testing::TestWithParam<FuzzTarget> {};

TEST_P(JsonFuzzRegressionTest, EveryKeptInputIsRejectedCleanlyOrRoundTrips) {
  const auto inputs = keptInputs(GetParam().name);
  ASSERT_FALSE(inputs.empty()) << "no seed corpus under " << fuzzFolder;
  for (const auto& input : inputs) {
    SCOPED_TRACE(input.string());
    const auto fileName = input.filename().string();
    try {
      const Outcome outcome = GetParam().check(detail::readWholeFile(input));
      // The seeds say by name which side they are meant to land on.
      if (startsWith(fileName, "valid_")) {
        EXPECT_EQ(outcome, Outcome::roundTripped) << "rejected";
      } else if (startsWith(fileName, "broken_")) {
        EXPECT_EQ(outcome, Outcome::rejected) << "accepted";
      }
    } catch (const fuzzing::PropertyFailure& failure) {
      ADD_FAILURE() << "property failed: " << failure.what();
    } catch (const std::exception& error) {
      ADD_FAILURE() << "failed with " << typeid(error).name()
                    << " instead of DecodingError: " << error.what();
    }
  }
}

INSTANTIATE_TEST_SUITE_P(
    Targets, JsonFuzzRegressionTest,
    ::testing::Values(FuzzTarget{"fuzz_json_readings", &fuzzing::checkDecoding<Readings>},
                      FuzzTarget{"fuzz_json_tags", &fuzzing::checkDecoding<std::vector<Tag>>},
                      FuzzTarget{"fuzz_json_tag", &fuzzing::checkDecoding<Tag>}),
    [](const auto& info) { return info.param.name; });

// The fuzzers' judge of JSON must agree with the grammar, or it would hide or invent findings.
TEST(JsonFuzzOracleTest, JudgesTheGrammarNotTheRangeOfNumbers) {
  const std::pair<std::string_view, bool> cases[] = {
      {R"({"a":[1,-0,0.5,2e-3,1E+2]})", true},
      {"[1e400, -21e99999, 123456789012345678901234567890]", true},
      {R"(["1e400", "\"-1\"", "x\\"])", true},
      {" null ", true},
      {"[01]", false},
      {"[1.]", false},
      {"[.5]", false},
      {"[-]", false},
      {"[+1]", false},
      {"[1e]", false},
      {"[1 2]", false},
      {"[1,]", false},
      {R"({"a":1}:)", false},
      {R"({"a":"b":}})", false},
      {R"(["unterminated)", false},
      {"\"\xff\"", false},
      {"", false},
  };
  for (const auto& [text, isJson] : cases) EXPECT_EQ(fuzzing::isJson(text), isJson) << text;
}

}  // namespace
}  // namespace cardiolith
