#include "serve/request_guard.hpp"

#include <array>
#include <random>

namespace cardiolith::tool::serve {
namespace {

constexpr std::array<std::string_view, 3> ownHostNames{"127.0.0.1", "[::1]", "localhost"};

}  // namespace

bool isOwnHost(std::string_view host, int port) {
  const std::string suffix = ":" + std::to_string(port);
  if (host.size() <= suffix.size() || host.substr(host.size() - suffix.size()) != suffix) return false;
  const std::string_view name = host.substr(0, host.size() - suffix.size());
  for (const auto own : ownHostNames) {
    if (name == own) return true;
  }
  return false;
}

bool isOwnOrigin(std::string_view origin, int port) {
  constexpr std::string_view scheme = "http://";
  return origin.substr(0, scheme.size()) == scheme && isOwnHost(origin.substr(scheme.size()), port);
}

bool changesState(std::string_view method) {
  return method != "GET" && method != "HEAD" && method != "OPTIONS";
}

bool tokensEqual(std::string_view given, std::string_view expected) {
  if (given.size() != expected.size()) return false;
  unsigned difference = 0;
  for (std::size_t i = 0; i < given.size(); ++i) {
    difference |=
        static_cast<unsigned>(static_cast<unsigned char>(given[i]) ^ static_cast<unsigned char>(expected[i]));
  }
  return difference == 0;
}

std::optional<Refusal> refusalOf(const RequestFacts& request, int port, std::string_view token) {
  if (!request.host || !isOwnHost(*request.host, port)) {
    return Refusal{403, "refused: the request is addressed to \"" + std::string(request.host.value_or("")) +
                            "\", not to this server (open http://127.0.0.1:" + std::to_string(port) + "/)"};
  }
  if (!changesState(request.method)) return std::nullopt;
  if (request.origin && !isOwnOrigin(*request.origin, port)) {
    return Refusal{
        403, "refused: a change sent from the page of another site (" + std::string(*request.origin) + ")"};
  }
  if (!request.token || !tokensEqual(*request.token, token)) {
    return Refusal{403,
                   "refused: a change without this run's token; reload the page (the server was restarted?)"};
  }
  return std::nullopt;
}

std::string newSessionToken() {
  std::random_device source;
  constexpr std::string_view digits = "0123456789abcdef";
  std::string token;
  for (int word = 0; word < 8; ++word) {
    auto bits = source();
    for (int nibble = 0; nibble < 8; ++nibble, bits >>= 4) token += digits[bits & 0xFU];
  }
  return token;
}

}  // namespace cardiolith::tool::serve
