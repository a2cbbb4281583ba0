#include "platform/posix_time_zone.hpp"

#include <gtest/gtest.h>

#include <memory>

namespace cardiolith::detail {
namespace {

int offsetMinutes(const icu::TimeZone& zone, double unixSeconds) {
  int32_t raw = 0, summer = 0;
  UErrorCode status = U_ZERO_ERROR;
  zone.getOffset(unixSeconds * 1000, false, raw, summer, status);
  return U_SUCCESS(status) ? (raw + summer) / 60000 : -9999;
}

TEST(PosixTimeZoneTest, RulesGiveTheSameOffsetsAsTheNamedZones) {
  const struct {
    const char* rule;
    const char* named;
  } cases[] = {
      {"CET-1CEST,M3.5.0,M10.5.0/3", "Europe/Berlin"},
      {"NZST-12NZDT,M9.5.0,M4.1.0/3", "Pacific/Auckland"},
      {"<+1245>-12:45<+1345>,M9.5.0/2:45,M4.1.0/3:45", "Pacific/Chatham"},
      {"EST5EDT", "America/New_York"},  // summer time without rules: the US rules
      {"<-03>3", "America/Sao_Paulo"},
      {"<+0545>-5:45", "Asia/Kathmandu"},
  };
  // Around each 2026 change in these zones, a minute either side, and midsummer and midwinter.
  const double instants[] = {1774745940, 1774746060, 1792889940, 1792890060, 1790431140,
                             1790431260, 1775311140, 1775311260, 1772953140, 1772953260,
                             1793512740, 1793512860, 1782864000, 1767225600};
  for (const auto& test : cases) {
    const auto zone = timeZoneFromPosixRule(test.rule);
    ASSERT_NE(zone, nullptr) << test.rule;
    const std::unique_ptr<icu::TimeZone> named(icu::TimeZone::createTimeZone(test.named));
    for (const double instant : instants)
      EXPECT_EQ(offsetMinutes(*zone, instant), offsetMinutes(*named, instant))
          << test.rule << " at " << instant;
  }
}

TEST(PosixTimeZoneTest, AnythingElseIsNotARule) {
  for (const char* text : {"Europe/Berlin", "", "X-1", "CET", "CET-1CEST,M13.1.0,M10.5.0",
                           "CET-1CEST,100,200", "CET-1CEST,M3.5.0", "CET-1CEST,M3.5.0,M10.5.0/3 ", "CET-25"})
    EXPECT_EQ(timeZoneFromPosixRule(text), nullptr) << text;
}

}  // namespace
}  // namespace cardiolith::detail
