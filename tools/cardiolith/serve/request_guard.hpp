#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace cardiolith::tool::serve {

// The checks every request to the log's web server passes before it is routed. Any web site the person
// visits can make their browser send requests to a loopback port, so the server answers only requests
// addressed to itself by name (no DNS rebinding) and accepts changes only from its own page (no cross-site
// request forgery). Pure functions: they see the request's facts, never a socket.

// What the checks read of a request. Absent headers are nullopt.
struct RequestFacts {
  std::string_view method;
  std::optional<std::string_view> host;
  std::optional<std::string_view> origin;
  std::optional<std::string_view> token;
};

struct Refusal {
  int status;
  std::string message;
};

// Whether a Host header names this server: 127.0.0.1, [::1] or localhost with its port.
[[nodiscard]] bool isOwnHost(std::string_view host, int port);
// Whether an Origin header is this server's own page: "http://" and one of the own hosts.
[[nodiscard]] bool isOwnOrigin(std::string_view origin, int port);
// Whether a request of this method can change the log: anything but GET, HEAD and OPTIONS.
[[nodiscard]] bool changesState(std::string_view method);
// Compares in time that depends on the length only, so the token can't be guessed a character at a time.
[[nodiscard]] bool tokensEqual(std::string_view given, std::string_view expected);

// Why the request is refused (403 with a message for the person or the script), or nullopt when it may
// proceed: the Host must be the server's own; a state-changing request must carry the run's token and, when
// it has an Origin, the server's own.
[[nodiscard]] std::optional<Refusal> refusalOf(const RequestFacts& request, int port, std::string_view token);

// A new secret for one run of the server: 32 random bytes from the system's source, as 64 hex digits.
[[nodiscard]] std::string newSessionToken();

}  // namespace cardiolith::tool::serve
