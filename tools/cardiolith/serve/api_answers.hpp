#pragma once

#include <httplib.h>

#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "input/period_options.hpp"
#include "serve/reading_request.hpp"
#include "serve/routes.hpp"
#include "tool_error.hpp"

namespace cardiolith::tool::serve {

// What the routes of the API share: how they answer, read query parameters and run under the log's mutex.

inline constexpr const char* jsonType = "application/json; charset=utf-8";

// Answers {"error": message} with this status.
void answerError(httplib::Response& response, int status, std::string_view message);

// A query parameter, absent or as given.
[[nodiscard]] std::optional<std::string> parameter(const httplib::Request& request, const char* name);

// The period options of a query: from, to and last as `list --from/--to/--last` read them.
[[nodiscard]] PeriodOptions periodOptionsOf(const httplib::Request& request);

// Runs `work` for an API answer that is never cached, turning the refusals of the shared command code into
// 4xx answers carrying its message: MalformedRequest 400, ToolError 422.
template <typename Work>
void answering(httplib::Response& response, Work work) {
  response.set_header("Cache-Control", "no-store");
  try {
    work();
  } catch (const MalformedRequest& error) {
    answerError(response, 400, error.what());
  } catch (const ToolError& error) {
    answerError(response, 422, error.what());
  }
}

// An API handler as answering() runs it, holding `logAccess`: one request at a time reaches the log and
// the locale's formatters.
template <typename Handler>
httplib::Server::Handler api(std::mutex& logAccess, Handler handler) {
  return [&logAccess, handler](const httplib::Request& request, httplib::Response& response) {
    answering(response, [&] {
      const std::lock_guard hold(logAccess);
      handler(request, response);
    });
  };
}

// An API handler that takes a JSON body: the body is read as it arrives and refused with 413 past
// maxBodyBytes, whatever the request said of its length, then `handler(request, body, response)` runs as
// api() runs handlers.
template <typename Handler>
httplib::Server::HandlerWithContentReader withSmallBody(std::mutex& logAccess, Handler handler) {
  return [&logAccess, handler](const httplib::Request& request, httplib::Response& response,
                               const httplib::ContentReader& reader) {
    std::string body;
    bool tooLarge = false;
    const bool whole = reader([&body, &tooLarge](const char* data, std::size_t size) {
      tooLarge = size > maxBodyBytes - body.size();
      if (!tooLarge) body.append(data, size);
      return !tooLarge;
    });
    if (!whole) {
      response.set_header("Connection", "close");
      return answerError(response, tooLarge ? 413 : 400,
                         tooLarge ? "the request body is too large" : "the request body ended early");
    }
    answering(response, [&] {
      const std::lock_guard hold(logAccess);
      handler(request, body, response);
    });
  };
}

}  // namespace cardiolith::tool::serve
