#pragma once

#include <cardiolith/analysis/blood_pressure_analysis.hpp>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace cardiolith::tool {

// How standard output is shown: in colour or not, and how wide a line may be.
struct TerminalStyle {
  bool color = false;
  std::optional<std::size_t> width;  // absent: no limit (output to a file or a pipe)
};

// Whether to colour, from --color ("always", "never" or "auto"), whether standard output is a terminal
// and the NO_COLOR variable: "auto" colours a terminal only, and never when NO_COLOR is set and not empty.
// "always" wins over NO_COLOR, because it was asked for on this very command line.
bool wantsColor(std::string_view choice, bool isTerminal, const char* noColor);

// The width of a line on the terminal: `reported` (the terminal's own, from the kernel) when there is one,
// else $COLUMNS when it is a positive number. Absent when output is not a terminal.
std::optional<std::size_t> lineWidth(bool isTerminal, std::optional<std::size_t> reported,
                                     const char* columns);

// The style of standard output in this process, for --color `choice`.
TerminalStyle standardOutputStyle(std::string_view choice);

// The text in the category's colour (an SGR escape sequence) when `color` is set; otherwise unchanged.
std::string colored(std::string_view text, BloodPressureAnalysis category, bool color);

}  // namespace cardiolith::tool
