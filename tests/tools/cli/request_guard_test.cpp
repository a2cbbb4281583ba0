#include "serve/request_guard.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <string_view>

namespace cardiolith::tool::serve {
namespace {

constexpr int port = 8470;
constexpr std::string_view token = "0123456789abcdef0123456789abcdef0123456789abcdef0123456789abcdef";

struct GuardCase {
  const char* name;
  RequestFacts request;
  std::optional<int> refusedWith;
};

class RequestGuardTest : public testing::TestWithParam<GuardCase> {};

TEST_P(RequestGuardTest, AdmitsOnlyOwnHostAndTokenedChanges) {
  const auto refusal = refusalOf(GetParam().request, port, token);
  ASSERT_EQ(refusal.has_value(), GetParam().refusedWith.has_value());
  if (refusal) {
    EXPECT_EQ(refusal->status, *GetParam().refusedWith);
    EXPECT_FALSE(refusal->message.empty());
  }
}

INSTANTIATE_TEST_SUITE_P(
    Requests, RequestGuardTest,
    testing::Values(
        GuardCase{"ReadOnIPv4", {"GET", "127.0.0.1:8470", std::nullopt, std::nullopt}, std::nullopt},
        GuardCase{"ReadOnIPv6", {"GET", "[::1]:8470", std::nullopt, std::nullopt}, std::nullopt},
        GuardCase{"ReadOnLocalhost", {"GET", "localhost:8470", std::nullopt, std::nullopt}, std::nullopt},
        GuardCase{"NoHost", {"GET", std::nullopt, std::nullopt, std::nullopt}, 403},
        GuardCase{"RebindingName", {"GET", "attacker.example:8470", std::nullopt, std::nullopt}, 403},
        GuardCase{"OtherPort", {"GET", "127.0.0.1:8471", std::nullopt, std::nullopt}, 403},
        GuardCase{"HostWithoutPort", {"GET", "127.0.0.1", std::nullopt, std::nullopt}, 403},
        GuardCase{"HostNamePrefix", {"GET", "x127.0.0.1:8470", std::nullopt, std::nullopt}, 403},
        GuardCase{
            "ChangeWithToken", {"POST", "127.0.0.1:8470", "http://127.0.0.1:8470", token}, std::nullopt},
        GuardCase{"ChangeWithTokenNoOrigin", {"DELETE", "[::1]:8470", std::nullopt, token}, std::nullopt},
        GuardCase{"ChangeWithoutToken", {"POST", "127.0.0.1:8470", std::nullopt, std::nullopt}, 403},
        GuardCase{"ChangeWithWrongToken", {"POST", "127.0.0.1:8470", std::nullopt, token.substr(1)}, 403},
        GuardCase{"ChangeFromOtherSite", {"POST", "127.0.0.1:8470", "http://attacker.example", token}, 403},
        GuardCase{"ChangeFromHttpsOrigin", {"PUT", "127.0.0.1:8470", "https://127.0.0.1:8470", token}, 403},
        GuardCase{"ChangeFromNullOrigin", {"POST", "127.0.0.1:8470", "null", token}, 403}),
    [](const auto& param) { return std::string(param.param.name); });

TEST(RequestGuardTest, TokensAreLongAndNewEachRun) {
  const auto first = newSessionToken();
  EXPECT_EQ(first.size(), 64U);
  EXPECT_EQ(first.find_first_not_of("0123456789abcdef"), std::string::npos);
  EXPECT_NE(first, newSessionToken());
}

}  // namespace
}  // namespace cardiolith::tool::serve
