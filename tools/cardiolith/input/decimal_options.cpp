#include "input/decimal_options.hpp"

#include <algorithm>
#include <charconv>
#include <cstdint>

namespace cardiolith::tool {

std::string normaliseDecimal(std::string& text) {
  const std::size_t signLength = !text.empty() && (text.front() == '-' || text.front() == '+') ? 1 : 0;
  const auto digits = text.begin() + static_cast<std::ptrdiff_t>(signLength);
  const bool decimal =
      digits != text.end() && std::all_of(digits, text.end(), [](char c) { return c >= '0' && c <= '9'; });
  if (!decimal) return "\"" + text + "\" is not a whole number; write it in decimal digits, e.g. 71";
  const auto firstSignificant = std::find_if(digits, text.end() - 1, [](char c) { return c != '0'; });
  text.erase(digits, firstSignificant);
  // CLI11 would quietly turn a number too large for the option into the largest one it can hold.
  std::int64_t value = 0;
  const char* start = text.data() + (text.front() == '+' ? 1 : 0);
  if (std::from_chars(start, text.data() + text.size(), value).ec != std::errc{})
    return "\"" + text + "\" is too large a number";
  return {};
}

void requireDecimalIntegers(CLI::App& app) {
  for (CLI::Option* option : app.get_options()) {
    // transform() puts the check in front of the option's own, so a range check sees the decimal value.
    // The type name carries the descriptions of the option's checks after a colon: "INT:INT in [1 - 100]".
    const std::string type = option->get_type_name();
    if (type.starts_with("INT") || type.starts_with("UINT"))
      option->transform(CLI::Validator(normaliseDecimal, ""));
  }
  for (CLI::App* subcommand : app.get_subcommands(std::function<bool(CLI::App*)>{}))
    requireDecimalIntegers(*subcommand);
}

}  // namespace cardiolith::tool
