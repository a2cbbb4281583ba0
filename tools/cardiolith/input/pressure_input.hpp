#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace cardiolith::tool {

// A pressure pair typed on the command line, in mmHg, with the pulse when it was typed as a third number.
struct PressureInput {
  std::int64_t systolic = 0;
  std::int64_t diastolic = 0;
  std::optional<std::int64_t> pulse;
};

// "128/82", or with `allowPulse` also "128/82/71". ToolError, with an example, for anything else.
PressureInput parsePressure(std::string_view text, bool allowPulse);

}  // namespace cardiolith::tool
