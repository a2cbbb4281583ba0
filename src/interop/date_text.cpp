#include "interop/date_text.hpp"

#include <array>
#include <cctype>
#include <charconv>

namespace cardiolith::interop::detail {
namespace {

// A cursor over the text of one cell.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : rest_(text) {}

  bool atEnd() const { return rest_.empty(); }
  std::string_view rest() const { return rest_; }

  void skipSpaces() {
    while (!rest_.empty() && rest_.front() == ' ') rest_.remove_prefix(1);
  }

  bool literal(char c) {
    if (rest_.empty() || rest_.front() != c) return false;
    rest_.remove_prefix(1);
    return true;
  }

  // Between minDigits and maxDigits decimal digits.
  std::optional<int> number(std::size_t minDigits, std::size_t maxDigits) {
    std::size_t length = 0;
    while (length < rest_.size() && length < maxDigits &&
           std::isdigit(static_cast<unsigned char>(rest_[length])))
      ++length;
    if (length < minDigits) return std::nullopt;
    int value = 0;
    std::from_chars(rest_.data(), rest_.data() + length, value);
    rest_.remove_prefix(length);
    return value;
  }

  // A run of ASCII letters.
  std::string_view word() {
    std::size_t length = 0;
    while (length < rest_.size() && std::isalpha(static_cast<unsigned char>(rest_[length]))) ++length;
    const std::string_view result = rest_.substr(0, length);
    rest_.remove_prefix(length);
    return result;
  }

 private:
  std::string_view rest_;
};

bool equalIgnoringCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (std::tolower(static_cast<unsigned char>(a[i])) != std::tolower(static_cast<unsigned char>(b[i])))
      return false;
  }
  return true;
}

// 1-12 for an English month name or its three-letter abbreviation ("Sept" too).
std::optional<int> monthNamed(std::string_view word) {
  static constexpr std::array<std::string_view, 12> names{"january",   "february", "march",    "april",
                                                          "may",       "june",     "july",     "august",
                                                          "september", "october",  "november", "december"};
  if (word.size() < 3) return std::nullopt;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (equalIgnoringCase(word, names[i]) || equalIgnoringCase(word, names[i].substr(0, 3)) ||
        (i == 8 && equalIgnoringCase(word, "sept")))
      return static_cast<int>(i + 1);
  }
  return std::nullopt;
}

bool clockTime(Scanner& scan, CivilTime& into) {
  const auto hour = scan.number(1, 2);
  if (!hour || !scan.literal(':')) return false;
  const auto minute = scan.number(2, 2);
  if (!minute) return false;
  double second = 0;
  if (scan.literal(':')) {
    const auto whole = scan.number(2, 2);
    if (!whole) return false;
    second = *whole;
    if (scan.literal('.')) {
      double scale = 0.1;
      const std::string_view digits = scan.rest();
      std::size_t count = 0;
      while (count < digits.size() && std::isdigit(static_cast<unsigned char>(digits[count]))) {
        second += (digits[count] - '0') * scale;
        scale /= 10;
        ++count;
      }
      if (count == 0) return false;
      Scanner skip(digits.substr(count));
      scan = skip;
    }
  }
  int hours = *hour;
  Scanner probe = scan;
  probe.skipSpaces();
  const std::string_view meridiem = probe.word();
  if (equalIgnoringCase(meridiem, "am") || equalIgnoringCase(meridiem, "pm")) {
    if (hours < 1 || hours > 12) return false;
    hours = hours % 12 + (equalIgnoringCase(meridiem, "pm") ? 12 : 0);
    scan = probe;
  }
  into.hour = hours;
  into.minute = *minute;
  into.second = second;
  return true;
}

// "Z", "+01:00", "+0100", "-05"; the sign is required for a number.
std::optional<int> utcOffset(Scanner& scan) {
  if (scan.literal('Z')) return 0;
  int sign = 0;
  if (scan.literal('+')) {
    sign = 1;
  } else if (scan.literal('-')) {
    sign = -1;
  } else {
    return std::nullopt;
  }
  const auto hours = scan.number(2, 2);
  if (!hours) return std::nullopt;
  scan.literal(':');
  const int minutes = scan.number(2, 2).value_or(0);
  return sign * (*hours * 3600 + minutes * 60);
}

// The calendar date at the start of a cell, in any of the forms parseDateText names.
bool calendarDate(Scanner& scan, std::optional<DayOrder> order, DateText& out) {
  if (std::isalpha(static_cast<unsigned char>(scan.rest().empty() ? '0' : scan.rest().front()))) {
    const auto month = monthNamed(scan.word());
    scan.literal('.');
    scan.skipSpaces();
    const auto day = scan.number(1, 2);
    scan.literal(',');
    scan.skipSpaces();
    const auto year = scan.number(4, 4);
    if (!month || !day || !year) return false;
    out.time.year = *year, out.time.month = *month, out.time.day = *day;
    return true;
  }
  const auto first = scan.number(1, 4);
  if (!first) return false;
  if (scan.literal('-')) {  // year-month-day
    const auto month = scan.number(1, 2);
    if (!month || !scan.literal('-')) return false;
    const auto day = scan.number(1, 2);
    if (!day) return false;
    out.time.year = *first, out.time.month = *month, out.time.day = *day;
    return true;
  }
  const bool dotted = scan.literal('.');
  if (dotted || scan.literal('/')) {
    const auto second = scan.number(1, 2);
    if (!second || !scan.literal(dotted ? '.' : '/')) return false;
    const auto year = scan.number(4, 4);
    if (!year) return false;
    out.time.year = *year;
    const bool dayFirst = dotted || order.value_or(DayOrder::dayFirst) == DayOrder::dayFirst;
    out.time.day = dayFirst ? *first : *second;
    out.time.month = dayFirst ? *second : *first;
    if (!dotted) out.slashed = std::pair{*first, *second};
    return true;
  }
  scan.skipSpaces();  // "12 Jan 2025"
  const auto month = monthNamed(scan.word());
  scan.skipSpaces();
  const auto year = scan.number(4, 4);
  if (!month || !year) return false;
  out.time.year = *year, out.time.month = *month, out.time.day = *first;
  return true;
}

}  // namespace

std::optional<DateText> parseDateText(std::string_view text, std::optional<DayOrder> order) {
  Scanner scan(text);
  DateText result;
  if (!calendarDate(scan, order, result)) return std::nullopt;
  if (!scan.literal('T')) {
    scan.literal(',');
    scan.skipSpaces();
  }
  if (!scan.atEnd()) {
    if (!clockTime(scan, result.time)) return std::nullopt;
    result.hasTime = true;
    scan.skipSpaces();
    if (!scan.atEnd()) {
      result.offsetSeconds = utcOffset(scan);
      if (!result.offsetSeconds) return std::nullopt;
    }
  }
  if (!scan.atEnd()) return std::nullopt;
  return result;
}

bool parseClockTime(std::string_view text, CivilTime& into) {
  Scanner scan(text);
  CivilTime time = into;
  if (!clockTime(scan, time)) return false;
  scan.skipSpaces();
  if (!scan.atEnd()) return false;
  into = time;
  return true;
}

std::optional<DayOrder> provenOrder(std::pair<int, int> slashed) {
  if (slashed.first > 12) return DayOrder::dayFirst;
  if (slashed.second > 12) return DayOrder::monthFirst;
  return std::nullopt;
}

}  // namespace cardiolith::interop::detail
