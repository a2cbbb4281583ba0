// The web server's reading of outside input: an add or edit request's JSON body, and the Host and Origin
// checks. Any body may be refused, but only with MalformedRequest or ToolError; one that is accepted is a
// JSON object (by an independent parser); an addition holds the three whole-number values, an edit changes
// something. A Host or Origin is accepted only
// when it names the server exactly.
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "fuzz_one_input.hpp"
#include "serve/reading_request.hpp"
#include "serve/request_guard.hpp"
#include "tool_error.hpp"

namespace {

using cardiolith::fuzzing::require;

constexpr int port = 8470;

void checkBody(std::string_view body) {
  try {
    const auto reading = cardiolith::tool::serve::parseNewReading(body).reading;
    const auto json = nlohmann::json::parse(body, nullptr, false);
    require(json.is_object(), "an accepted body is a JSON object");
    for (const char* member : {"systolic", "diastolic", "pulse"}) {
      require(json.contains(member) && json[member].is_number_integer(), "accepted values are whole numbers");
    }
    require(json["systolic"].get<std::int64_t>() == reading.systolic, "systolic read as written");
  } catch (const cardiolith::tool::serve::MalformedRequest&) {
  } catch (const cardiolith::tool::ToolError&) {
  }
}

void checkEditBody(std::string_view body) {
  try {
    const auto page = cardiolith::tool::serve::parseReadingEdit("1a2b3c4d", body);
    require(nlohmann::json::parse(body, nullptr, false).is_object(), "an accepted edit is a JSON object");
    require(page.edit.changesSomething() || page.tags, "an accepted edit changes something");
  } catch (const cardiolith::tool::serve::MalformedRequest&) {
  } catch (const cardiolith::tool::ToolError&) {
  }
}

void checkHeaders(std::string_view text) {
  using namespace cardiolith::tool::serve;
  const bool own = text == "127.0.0.1:8470" || text == "[::1]:8470" || text == "localhost:8470";
  require(isOwnHost(text, port) == own, "only the server's own names are its host");
  require(!isOwnOrigin(text, port) || isOwnHost(text.substr(7), port),
          "an own origin is http:// and own host");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return cardiolith::fuzzing::fuzzOneInput(data, size, [](std::string_view text) {
    checkBody(text);
    checkEditBody(text);
    checkHeaders(text);
  });
}
