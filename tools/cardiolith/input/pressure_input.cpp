#include "input/pressure_input.hpp"

#include <charconv>
#include <string>
#include <vector>

#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

std::optional<std::int64_t> wholeNumber(std::string_view text) {
  if (text.empty() || text.front() < '0' || text.front() > '9') return std::nullopt;
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return value;
}

std::vector<std::string_view> splitAtSlashes(std::string_view text) {
  std::vector<std::string_view> parts;
  for (std::size_t start = 0;;) {
    const auto slash = text.find('/', start);
    parts.push_back(
        text.substr(start, slash == std::string_view::npos ? std::string_view::npos : slash - start));
    if (slash == std::string_view::npos) return parts;
    start = slash + 1;
  }
}

}  // namespace

PressureInput parsePressure(std::string_view text, bool allowPulse) {
  const auto parts = splitAtSlashes(text);
  std::vector<std::int64_t> numbers;
  for (const auto part : parts) {
    if (const auto number = wholeNumber(part)) numbers.push_back(*number);
  }
  const bool wellFormed =
      numbers.size() == parts.size() && (parts.size() == 2 || (allowPulse && parts.size() == 3));
  if (!wellFormed) {
    throw ToolError("\"" + std::string(text) + "\" is not a blood-pressure " +
                    (allowPulse ? "reading" : "pair") + "; write systolic/diastolic in mmHg, " +
                    (allowPulse ? "e.g. 128/82, or 128/82/71 with the pulse" : "e.g. 128/82"));
  }
  PressureInput input{numbers[0], numbers[1], std::nullopt};
  if (numbers.size() == 3) input.pulse = numbers[2];
  return input;
}

}  // namespace cardiolith::tool
