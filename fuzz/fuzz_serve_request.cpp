// The web server's reading of outside input: an add or edit request's JSON body, and the Host and Origin
// checks. Any body may be refused, but only with MalformedRequest or ToolError; one that is accepted is a
// JSON object (by an independent parser); an addition holds the three whole-number values, an edit changes
// something. A Host or Origin is accepted only
// when it names the server exactly.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "serve/reading_request.hpp"
#include "serve/request_guard.hpp"
#include "tool_error.hpp"

namespace {

constexpr int port = 8470;

[[noreturn]] void fail(const char* property) {
  std::fprintf(stderr, "property failed: %s\n", property);
  std::abort();
}

void checkBody(std::string_view body) {
  try {
    const auto reading = cardiolith::tool::serve::parseNewReading(body).reading;
    const auto json = nlohmann::json::parse(body, nullptr, false);
    if (!json.is_object()) fail("an accepted body is a JSON object");
    for (const char* member : {"systolic", "diastolic", "pulse"}) {
      if (!json.contains(member) || !json[member].is_number_integer())
        fail("accepted values are whole numbers");
    }
    if (json["systolic"].get<std::int64_t>() != reading.systolic) fail("systolic read as written");
  } catch (const cardiolith::tool::serve::MalformedRequest&) {
  } catch (const cardiolith::tool::ToolError&) {
  }
}

void checkEditBody(std::string_view body) {
  try {
    const auto page = cardiolith::tool::serve::parseReadingEdit("1a2b3c4d", body);
    if (!nlohmann::json::parse(body, nullptr, false).is_object()) fail("an accepted edit is a JSON object");
    if (!page.edit.changesSomething() && !page.tags) fail("an accepted edit changes something");
  } catch (const cardiolith::tool::serve::MalformedRequest&) {
  } catch (const cardiolith::tool::ToolError&) {
  }
}

void checkHeaders(std::string_view text) {
  using namespace cardiolith::tool::serve;
  const bool own = text == "127.0.0.1:8470" || text == "[::1]:8470" || text == "localhost:8470";
  if (isOwnHost(text, port) != own) fail("only the server's own names are its host");
  if (isOwnOrigin(text, port) && !isOwnHost(text.substr(7), port))
    fail("an own origin is http:// and own host");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  checkBody(text);
  checkEditBody(text);
  checkHeaders(text);
  return 0;
}
