#include "render/terminal.hpp"

#include <sys/ioctl.h>
#include <unistd.h>

#include <charconv>
#include <cstdlib>

namespace cardiolith::tool {
namespace {

std::string_view colorCode(BloodPressureAnalysis category) {
  switch (category) {
    case BloodPressureAnalysis::low:
      return "34";  // blue
    case BloodPressureAnalysis::normal:
      return "32";  // green
    case BloodPressureAnalysis::elevated:
      return "33";  // yellow
    case BloodPressureAnalysis::high:
      return "35";  // magenta
    case BloodPressureAnalysis::veryHigh:
      return "1;31";  // bold red
    case BloodPressureAnalysis::unreadable:
      break;
  }
  return "";
}

}  // namespace

bool wantsColor(std::string_view choice, bool isTerminal, const char* noColor) {
  if (choice == "always") return true;
  if (choice == "never") return false;
  return isTerminal && (noColor == nullptr || *noColor == '\0');
}

std::optional<std::size_t> lineWidth(bool isTerminal, std::optional<std::size_t> reported,
                                     const char* columns) {
  if (!isTerminal) return std::nullopt;
  if (reported && *reported > 0) return reported;
  if (columns == nullptr) return std::nullopt;
  const std::string_view text(columns);
  std::size_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{} || end != text.data() + text.size() || value == 0) return std::nullopt;
  return value;
}

TerminalStyle standardOutputStyle(std::string_view choice) {
  const bool isTerminal = ::isatty(STDOUT_FILENO) == 1;
  std::optional<std::size_t> reported;
  struct winsize size {};
  if (isTerminal && ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0) reported = size.ws_col;
  return {wantsColor(choice, isTerminal, std::getenv("NO_COLOR")),
          lineWidth(isTerminal, reported, std::getenv("COLUMNS"))};
}

std::string colored(std::string_view text, BloodPressureAnalysis category, bool color) {
  const auto code = colorCode(category);
  if (!color || code.empty()) return std::string(text);
  return "\x1b[" + std::string(code) + "m" + std::string(text) + "\x1b[0m";
}

}  // namespace cardiolith::tool
