#pragma once

// The raw text of every reading's "date" member in a readings document, as an independent parser sees
// it, to check the decoder's numbers against a correctly rounding conversion.

#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cardiolith::fuzzing {
namespace date_tokens_detail {

using Json = nlohmann::json;

}  // namespace date_tokens_detail

// A date member's number: the token itself, or for an integer its decimal form, which converts to the
// same double except that the sign of -0 is lost.
struct DateToken {
  std::string text;
  bool isRawText;
};

namespace date_tokens_detail {

// Follows the nesting {"readings":[{"date":...}]} and keeps, per reading, the text of its last "date"
// (the last of repeated members wins, as in the decoder), and the last "readings" member's list.
class DateTokenCollector : public nlohmann::json_sax<Json> {
 public:
  std::vector<std::optional<DateToken>> dates;

  bool null() override { return value(std::nullopt); }
  bool boolean(bool) override { return value(std::nullopt); }
  bool number_integer(number_integer_t number) override {
    return value(DateToken{std::to_string(number), false});
  }
  bool number_unsigned(number_unsigned_t number) override {
    return value(DateToken{std::to_string(number), false});
  }
  bool number_float(number_float_t, const string_t& text) override { return value(DateToken{text, true}); }
  bool string(string_t&) override { return value(std::nullopt); }
  bool binary(binary_t&) override { return value(std::nullopt); }
  bool start_object(std::size_t) override {
    if (depth_ == 2 && inReadings_) dates.emplace_back();
    keys_.resize(++depth_ + 1);
    return true;
  }
  bool end_object() override { return end(); }
  bool start_array(std::size_t) override {
    if (depth_ == 1 && keys_[1] == "readings") {
      inReadings_ = true;
      dates.clear();
    }
    keys_.resize(++depth_ + 1);
    return true;
  }
  bool end_array() override {
    if (depth_ == 2) inReadings_ = false;
    return end();
  }
  bool key(string_t& key) override {
    keys_[depth_] = key;
    return true;
  }
  bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception&) override {
    return false;
  }

 private:
  bool value(std::optional<DateToken> text) {
    if (depth_ == 3 && inReadings_ && keys_[3] == "date" && !dates.empty()) dates.back() = std::move(text);
    return true;
  }
  bool end() {
    --depth_;
    return true;
  }

  std::size_t depth_ = 0;
  std::vector<std::string> keys_{1};
  bool inReadings_ = false;
};

}  // namespace date_tokens_detail

// The date token of each reading, in order; nothing when the independent parser refuses the text (it
// refuses numbers beyond the range of a double anywhere in it). Integers come back in their decimal
// form.
inline std::optional<std::vector<std::optional<DateToken>>> dateTokens(std::string_view text) {
  date_tokens_detail::DateTokenCollector collector;
  if (!nlohmann::json::sax_parse(text, &collector)) return std::nullopt;
  return std::move(collector.dates);
}

}  // namespace cardiolith::fuzzing
