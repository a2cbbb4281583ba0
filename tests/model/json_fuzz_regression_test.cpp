// Replays the fuzzers' kept inputs through the normal build: the seed corpus and every input a fuzzer
// once crashed on. Each must be rejected with DecodingError, or be JSON and survive the round trip.

#include <gtest/gtest.h>

#include <algorithm>
#include <exception>
#include <filesystem>
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

// The seeds and the regressions of one fuzz target, in a stable order.
std::vector<fs::path> keptInputs(const std::string& target) {
  const auto fuzzFolder = fs::path(__FILE__).parent_path().parent_path().parent_path() / "fuzz";
  std::vector<fs::path> inputs;
  for (const char* kind : {"corpus", "regressions"}) {
    if (!fs::is_directory(fuzzFolder / kind / target)) continue;
    for (const auto& entry : fs::directory_iterator(fuzzFolder / kind / target))
      inputs.push_back(entry.path());
  }
  std::sort(inputs.begin(), inputs.end());
  return inputs;
}

TEST(JsonFuzzRegressionTest, EveryKeptInputIsRejectedCleanlyOrRoundTrips) {
  const std::pair<std::string, Outcome (*)(std::string_view)> targets[] = {
      {"fuzz_json_readings", &fuzzing::checkDecoding<Readings>},
      {"fuzz_json_tags", &fuzzing::checkDecoding<std::vector<Tag>>},
      {"fuzz_json_tag", &fuzzing::checkDecoding<Tag>}};
  for (const auto& [target, check] : targets) {
    const auto inputs = keptInputs(target);
    EXPECT_FALSE(inputs.empty()) << "no seed corpus for " << target;
    for (const auto& input : inputs) {
      // The seeds say by name which side they are meant to land on.
      const auto name = input.filename().string();
      try {
        const Outcome outcome = check(detail::readWholeFile(input));
        EXPECT_FALSE(name.starts_with("valid_") && outcome != Outcome::roundTripped)
            << input << " was rejected";
        EXPECT_FALSE(name.starts_with("broken_") && outcome != Outcome::rejected) << input << " was accepted";
      } catch (const std::exception& error) {
        ADD_FAILURE() << input << " threw " << typeid(error).name() << ": " << error.what();
      }
    }
  }
}

}  // namespace
}  // namespace cardiolith
