#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <deque>
#include <map>

#include "cardiolith/interop/delimited.hpp"
#include "cardiolith/platform/civil_time.hpp"
#include "cardiolith/platform/uuid.hpp"
#include "interop/cell_reader.hpp"
#include "interop/cell_text.hpp"
#include "interop/date_text.hpp"
#include "interop/whole_number.hpp"

namespace cardiolith::interop {
namespace {

enum class Role { skip, date, time, datetime, timestamp, systolic, diastolic, pulse, notes, tags, id };

const std::map<std::string, Role, std::less<>>& roleNames() {
  static const std::map<std::string, Role, std::less<>> names{{"date", Role::date},
                                                              {"day", Role::date},
                                                              {"time", Role::time},
                                                              {"datetime", Role::datetime},
                                                              {"date and time", Role::datetime},
                                                              {"date/time", Role::datetime},
                                                              {"date time", Role::datetime},
                                                              {"timestamp", Role::timestamp},
                                                              {"systolic", Role::systolic},
                                                              {"sys", Role::systolic},
                                                              {"systolic pressure", Role::systolic},
                                                              {"diastolic", Role::diastolic},
                                                              {"dia", Role::diastolic},
                                                              {"diastolic pressure", Role::diastolic},
                                                              {"pulse", Role::pulse},
                                                              {"heart rate", Role::pulse},
                                                              {"bpm", Role::pulse},
                                                              {"pulse rate", Role::pulse},
                                                              {"notes", Role::notes},
                                                              {"note", Role::notes},
                                                              {"comments", Role::notes},
                                                              {"comment", Role::notes},
                                                              {"tags", Role::tags},
                                                              {"tag", Role::tags},
                                                              {"id", Role::id},
                                                              {"skip", Role::skip}};
  return names;
}

// "Systolic (mmHg)" -> "systolic": lower case, without units in brackets and surrounding spaces.
std::string headerKey(std::string_view header) {
  std::string key;
  int depth = 0;
  for (const char c : header) {
    if (c == '(' || c == '[') ++depth;
    if (depth == 0) key.push_back(static_cast<char>(std::tolower(static_cast<unsigned char>(c))));
    if ((c == ')' || c == ']') && depth > 0) --depth;
  }
  const auto first = key.find_first_not_of(' ');
  if (first == std::string::npos) return {};
  return key.substr(first, key.find_last_not_of(' ') - first + 1);
}

std::optional<Role> roleOfHeader(std::string_view header) {
  const std::string key = headerKey(header);
  if (const auto found = roleNames().find(key); found != roleNames().end()) return found->second;
  // A Unix timestamp named after its unit, such as timestampUnixMs.
  if (key.find("unix") != std::string::npos || key.find("epoch") != std::string::npos) return Role::timestamp;
  return std::nullopt;
}

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
  return text;
}

std::string quotedForMessage(std::string_view text) {
  constexpr std::size_t kLongest = 40;
  std::string quoted;
  quoted.reserve(kLongest + 5);
  quoted.push_back('"');
  quoted.append(text.substr(0, kLongest));
  if (text.size() > kLongest) quoted.append("...");
  quoted.push_back('"');
  return quoted;
}

// Whether the roles include a date (or a date and time, or a timestamp), systolic and diastolic.
bool coverReadings(const std::vector<Role>& roles) {
  const auto has = [&roles](Role role) { return std::find(roles.begin(), roles.end(), role) != roles.end(); };
  return (has(Role::date) || has(Role::datetime) || has(Role::timestamp)) && has(Role::systolic) &&
         has(Role::diastolic);
}

std::vector<Role> rolesOfColumns(const std::vector<std::string>& names) {
  std::vector<Role> roles;
  for (const auto& name : names) {
    const auto found = roleNames().find(headerKey(name));
    if (found == roleNames().end())
      throw ImportError("--columns: " + quotedForMessage(name) +
                        " is not a role; use date, time, datetime, timestamp, systolic, diastolic, pulse, "
                        "notes, tags, id or skip");
    roles.push_back(found->second);
  }
  if (!coverReadings(roles)) throw ImportError("--columns names no date, systolic and diastolic column");
  return roles;
}

struct Row {
  std::uint64_t line = 0;
  std::vector<std::string> cells;
};

class DelimitedReader final : public ReadingReader {
 public:
  DelimitedReader(std::istream& in, const ReaderOptions& options, std::optional<char> separator)
      : cells_(in, options.progress) {
    cells_.setSeparator(separator ? *separator : cells_.guessSeparator());
    if (options.dateFormat) {
      pattern_.emplace(*options.dateFormat);
      patternText_ = *options.dateFormat;
    }
    Row header;
    if (!cells_.nextRow(header.cells, header.line)) throw ImportError("the file is empty: no header row");
    if (options.columns.empty()) {
      rolesFromHeader(header);
    } else {
      roles_ = rolesOfColumns(options.columns);
      mapColumns();
      if (!looksLikeHeader(header)) pending_.push_back(std::move(header));
    }
  }

  std::optional<ReaderItem> next() override {
    while (ready_.empty()) {
      Row row;
      if (!cells_.nextRow(row.cells, row.line)) {
        if (!pending_.empty()) {
          const auto first = std::find_if(pending_.begin(), pending_.end(),
                                          [this](const Row& waiting) { return undecided(waiting); });
          if (first == pending_.end()) {
            flushPending();
            continue;
          }
          throw ImportError("line " + std::to_string(first->line) + ": the date " +
                            quotedForMessage(cell(*first, dateColumn())) +
                            " could be day/month or month/day, and no date in the file has a day above 12 to "
                            "settle it; give the order with --date-format dd/MM/yyyy or --date-format "
                            "MM/dd/yyyy");
        }
        return std::nullopt;
      }
      if (isBlank(row)) continue;
      consider(std::move(row));
    }
    ReaderItem item = std::move(ready_.front());
    ready_.pop_front();
    return item;
  }

 private:
  void rolesFromHeader(const Row& header) {
    const std::vector<std::string_view> own(std::begin(detail::kOwnColumns), std::end(detail::kOwnColumns));
    own_ = header.cells.size() == own.size() && std::equal(own.begin(), own.end(), header.cells.begin());
    for (const auto& name : header.cells) roles_.push_back(roleOfHeader(name).value_or(Role::skip));
    checkRoles("the header " + quotedForMessage(joined(header.cells)) +
               " names no column of dates, systolic and diastolic pressures; name the columns with "
               "--columns date,time,systolic,diastolic,pulse,notes,tags,skip");
  }

  void checkRoles(const std::string& message) {
    if (!coverReadings(roles_)) throw ImportError("line 1: " + message);
    mapColumns();
  }

  void mapColumns() {
    for (std::size_t i = 0; i < roles_.size(); ++i) {
      if (!columns_.contains(roles_[i])) columns_[roles_[i]] = i;  // the first column of a role counts
    }
  }

  static std::string joined(const std::vector<std::string>& cells) {
    std::string text;
    for (const auto& c : cells) text += (text.empty() ? "" : ",") + c;
    return text;
  }

  bool looksLikeHeader(const Row& row) const {
    return !detail::wholeNumber(trimmed(cell(row, columns_.at(Role::systolic))));
  }

  static bool isBlank(const Row& row) {
    return std::all_of(row.cells.begin(), row.cells.end(), [](const auto& c) { return trimmed(c).empty(); });
  }

  std::size_t dateColumn() const {
    for (const Role role : {Role::datetime, Role::date, Role::timestamp}) {
      if (const auto found = columns_.find(role); found != columns_.end()) return found->second;
    }
    return 0;
  }

  std::string_view cell(const Row& row, std::size_t column) const {
    if (column >= row.cells.size()) return {};
    const std::string_view text = row.cells[column];
    return own_ ? detail::unguarded(text) : text;
  }

  std::optional<std::string_view> cellOf(const Row& row, Role role) const {
    const auto found = columns_.find(role);
    if (found == columns_.end()) return std::nullopt;
    const std::string_view text = cell(row, found->second);
    if (own_ && (role == Role::notes || role == Role::tags || role == Role::id)) return text;
    const std::string_view value = trimmed(text);
    if (value.empty() || value == "-") return std::nullopt;
    return value;
  }

  // A slashed date whose order the file has not settled yet.
  bool undecided(const Row& row) const {
    if (pattern_ || order_) return false;
    const auto text = cellOf(row, Role::datetime) ? cellOf(row, Role::datetime) : cellOf(row, Role::date);
    if (!text) return false;
    const auto date = detail::parseDateText(*text, std::nullopt);
    return date && date->slashed && !detail::provenOrder(*date->slashed);
  }

  void consider(Row row) {
    if (!order_ && !pattern_) {
      const auto text = cellOf(row, Role::datetime) ? cellOf(row, Role::datetime) : cellOf(row, Role::date);
      if (const auto date = text ? detail::parseDateText(*text, std::nullopt) : std::nullopt;
          date && date->slashed) {
        order_ = detail::provenOrder(*date->slashed);
      }
    }
    if (!order_ && !pattern_ && (undecided(row) || !pending_.empty())) {
      pending_.push_back(std::move(row));
      return;
    }
    flushPending();
    ready_.push_back(convert(row));
  }

  void flushPending() {
    while (!pending_.empty()) {
      ready_.push_back(convert(pending_.front()));
      pending_.pop_front();
    }
  }

  std::string where(const Row& row) const { return "line " + std::to_string(row.line); }

  InvalidRow invalid(const Row& row, std::string reason) const { return {where(row), std::move(reason)}; }

  ReaderItem convert(const Row& row) const {
    const auto date = dateOf(row);
    if (std::holds_alternative<std::string>(date)) return invalid(row, std::get<std::string>(date));
    std::int64_t values[3] = {};
    const std::pair<Role, const char*> valueColumns[] = {{Role::systolic, "systolic pressure"},
                                                         {Role::diastolic, "diastolic pressure"},
                                                         {Role::pulse, "pulse"}};
    for (std::size_t i = 0; i < 3; ++i) {
      const auto text = cellOf(row, valueColumns[i].first);
      if (!text) {
        if (valueColumns[i].first == Role::pulse) return SkippedRecord{where(row), "no pulse"};
        return invalid(row,
                       std::string("the ") + valueColumns[i].second + " is missing; expected a whole number");
      }
      const auto value = detail::wholeNumber(*text);
      if (!value)
        return invalid(row, std::string("the ") + valueColumns[i].second + " " + quotedForMessage(*text) +
                                " is not a whole number");
      values[i] = *value;
    }
    std::optional<std::string> notes;
    if (const auto text = cellOf(row, Role::notes)) notes = std::string(*text);
    std::string id;
    if (const auto text = cellOf(row, Role::id)) id = std::string(*text);
    IncomingReading incoming;
    incoming.position = where(row);
    incoming.reading = std::make_shared<Reading>(std::move(id), std::get<Date>(date), values[0], values[1],
                                                 values[2], std::move(notes), std::nullopt, std::nullopt);
    if (const auto text = cellOf(row, Role::tags)) incoming.tagTitles = tagsOf(*text);
    return incoming;
  }

  std::vector<std::string> tagsOf(std::string_view text) const {
    if (own_) return detail::splitTitles(text);
    std::vector<std::string> titles;
    const char separator = text.find(';') != std::string_view::npos ? ';' : ',';
    std::size_t start = 0;
    for (;;) {
      const std::size_t end = text.find(separator, start);
      const auto title = trimmed(text.substr(start, end == std::string_view::npos ? end : end - start));
      if (!title.empty()) titles.emplace_back(title);
      if (end == std::string_view::npos) break;
      start = end + 1;
    }
    return titles;
  }

  // The instant of a row, or why it has none.
  std::variant<Date, std::string> dateOf(const Row& row) const {
    const auto datetime = cellOf(row, Role::datetime);
    const auto day = datetime ? datetime : cellOf(row, Role::date);
    if (!day) {
      const auto stamp = cellOf(row, Role::timestamp);
      if (!stamp) return std::string("the date is missing");
      return timestampOf(*stamp);
    }
    std::optional<detail::DateText> date;
    if (pattern_) {
      if (const auto civil = pattern_->parse(*day))
        date = detail::DateText{*civil, true, std::nullopt, std::nullopt};
    } else {
      date = detail::parseDateText(*day, order_);
    }
    if (!date && pattern_)
      return "the date " + quotedForMessage(*day) + " does not match --date-format " +
             quotedForMessage(patternText_);
    if (!date)
      return "the date " + quotedForMessage(*day) +
             " is not a date; expected a form such as 2025-01-12, Jan 12 2025, 12.01.2025 or 01/12/2025 "
             "(or give --date-format)";
    if (const auto time = cellOf(row, Role::time); time && !datetime) {
      if (!detail::parseClockTime(*time, date->time))
        return "the time " + quotedForMessage(*time) + " is not a time; expected 8:12, 08:12 or 8:12 PM";
    }
    const auto instant =
        date->offsetSeconds ? instantAtOffset(date->time, *date->offsetSeconds) : clock_.instant(date->time);
    if (!instant)
      return "the date " + quotedForMessage(*day) + " names no day of the calendar or a time the clocks skip";
    return *instant;
  }

  static std::variant<Date, std::string> timestampOf(std::string_view text) {
    const auto number = detail::wholeNumber(text);
    if (!number)
      return "the timestamp " + quotedForMessage(text) + " is not a whole number of seconds or milliseconds";
    // Milliseconds from the size: 1e11 seconds is the year 5138, 1e11 milliseconds March 1973.
    constexpr std::int64_t kMillisecondsFrom = 100'000'000'000;
    const bool milliseconds = *number >= kMillisecondsFrom || *number <= -kMillisecondsFrom;
    const double seconds =
        milliseconds ? static_cast<double>(*number) / 1000.0 : static_cast<double>(*number);
    // The years 1-9999, as for dates written out.
    constexpr double kFirstSecond = -62135596800.0, kLastSecond = 253402300799.0;
    if (seconds < kFirstSecond || seconds > kLastSecond)
      return "the timestamp " + quotedForMessage(text) + " lies outside the years 1-9999";
    return Date::fromTimeIntervalSince1970(seconds);
  }

  detail::CellReader cells_;
  std::vector<Role> roles_;
  std::map<Role, std::size_t> columns_;
  bool own_ = false;
  LocalClock clock_;
  std::optional<DatePatternParser> pattern_;
  std::string patternText_;  // as the user gave it, for messages
  std::optional<detail::DayOrder> order_;
  std::deque<Row> pending_;  // rows waiting for the file to settle its day/month order
  std::deque<ReaderItem> ready_;
};

}  // namespace

std::unique_ptr<ReadingReader> readDelimited(std::istream& in, const ReaderOptions& options,
                                             std::optional<char> separator) {
  return std::make_unique<DelimitedReader>(in, options, separator);
}

void checkColumns(const std::vector<std::string>& columns) { (void)rolesOfColumns(columns); }

}  // namespace cardiolith::interop
