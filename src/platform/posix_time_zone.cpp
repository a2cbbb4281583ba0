#include "platform/posix_time_zone.hpp"

#include <unicode/simpletz.h>

#include <cctype>
#include <optional>
#include <string>

namespace cardiolith::detail {
namespace {

constexpr int hourMillis = 3600 * 1000;

// Reads the rule from left to right; each step returns nothing when the text doesn't fit.
class RuleReader {
 public:
  explicit RuleReader(std::string_view text) : text_(text) {}

  bool atEnd() const { return text_.empty(); }
  bool take(char c) {
    if (text_.empty() || text_.front() != c) return false;
    text_.remove_prefix(1);
    return true;
  }

  // "CET" (three or more letters) or "<+0545>".
  std::optional<std::string> name() {
    std::size_t length = 0;
    if (take('<')) {
      while (length < text_.size() && text_[length] != '>') ++length;
      if (length == text_.size() || length < 3) return std::nullopt;
      std::string result(text_.substr(0, length));
      text_.remove_prefix(length + 1);
      return result;
    }
    while (length < text_.size() && std::isalpha(static_cast<unsigned char>(text_[length]))) ++length;
    if (length < 3) return std::nullopt;
    std::string result(text_.substr(0, length));
    text_.remove_prefix(length);
    return result;
  }

  // "[+-]hh[:mm[:ss]]" in milliseconds.
  std::optional<int> time(int maxHours) {
    int sign = 1;
    if (take('-')) {
      sign = -1;
    } else {
      take('+');
    }
    const auto hours = number(2);
    if (!hours || *hours > maxHours) return std::nullopt;
    int millis = *hours * hourMillis;
    for (int unit = 60 * 1000; unit >= 1000 && take(':'); unit /= 60) {
      const auto part = number(2);
      if (!part || *part > 59) return std::nullopt;
      millis += *part * unit;
    }
    return sign * millis;
  }

  std::optional<int> number(std::size_t maxDigits) {
    std::size_t length = 0;
    int value = 0;
    while (length < maxDigits && length < text_.size() &&
           std::isdigit(static_cast<unsigned char>(text_[length])))
      value = value * 10 + (text_[length++] - '0');
    if (length == 0) return std::nullopt;
    text_.remove_prefix(length);
    return value;
  }

 private:
  std::string_view text_;
};

struct ChangeRule {
  int month = 0;        // 0 for January
  int weekInMonth = 0;  // 1-4, -1 for the last; or the day of the month when dayOfWeek is 0
  int dayOfWeek = 0;    // UCAL_SUNDAY..UCAL_SATURDAY, or 0 for an exact day of the month
  int time = 2 * hourMillis;
};

std::optional<ChangeRule> changeRule(RuleReader& reader) {
  ChangeRule rule;
  if (reader.take('M')) {
    const auto month = reader.number(2);
    const auto week = reader.take('.') ? reader.number(1) : std::nullopt;
    const auto day = reader.take('.') ? reader.number(1) : std::nullopt;
    if (!month || !week || !day || *month < 1 || *month > 12 || *week < 1 || *week > 5 || *day > 6)
      return std::nullopt;
    rule.month = *month - 1;
    rule.weekInMonth = *week == 5 ? -1 : *week;
    rule.dayOfWeek = UCAL_SUNDAY + *day;
  } else if (reader.take('J')) {
    static constexpr int monthLengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    auto day = reader.number(3);
    if (!day || *day < 1 || *day > 365) return std::nullopt;
    while (*day > monthLengths[rule.month]) *day -= monthLengths[rule.month++];
    rule.weekInMonth = *day;
  } else {
    return std::nullopt;  // a zero-based day of the year, counting 29 February, has no ICU rule
  }
  if (reader.take('/')) {
    const auto time = reader.time(24);
    if (!time || *time < 0) return std::nullopt;
    rule.time = *time;
  }
  return rule;
}

}  // namespace

std::unique_ptr<icu::TimeZone> timeZoneFromPosixRule(std::string_view rule) {
  RuleReader reader(rule);
  const auto standardName = reader.name();
  const auto standardOffset = standardName ? reader.time(24) : std::nullopt;
  if (!standardOffset) return nullptr;
  // POSIX offsets count west of Greenwich; ICU's count east.
  const int raw = -*standardOffset;
  const icu::UnicodeString id = icu::UnicodeString::fromUTF8(std::string(rule));
  if (reader.atEnd()) return std::make_unique<icu::SimpleTimeZone>(raw, id);

  const auto summerName = reader.name();
  if (!summerName) return nullptr;
  int summer = raw + hourMillis;
  RuleReader rest = reader;
  if (const auto offset = rest.time(24)) {
    summer = -*offset;
    reader = rest;
  }
  std::optional<ChangeRule> start = ChangeRule{2, 2, UCAL_SUNDAY}, end = ChangeRule{10, 1, UCAL_SUNDAY};
  if (reader.take(',')) {
    start = changeRule(reader);
    end = reader.take(',') ? changeRule(reader) : std::nullopt;
  }
  if (!start || !end || !reader.atEnd() || summer == raw) return nullptr;
  UErrorCode status = U_ZERO_ERROR;
  auto zone = std::make_unique<icu::SimpleTimeZone>(
      raw, id, static_cast<int8_t>(start->month), static_cast<int8_t>(start->weekInMonth),
      static_cast<int8_t>(start->dayOfWeek), start->time, icu::SimpleTimeZone::WALL_TIME,
      static_cast<int8_t>(end->month), static_cast<int8_t>(end->weekInMonth),
      static_cast<int8_t>(end->dayOfWeek), end->time, icu::SimpleTimeZone::WALL_TIME, summer - raw, status);
  return U_SUCCESS(status) ? std::move(zone) : nullptr;
}

}  // namespace cardiolith::detail
