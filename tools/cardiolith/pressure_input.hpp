#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cardiolith::tool {

// A pressure pair typed on the command line, in mmHg, with the pulse when it was typed as a third number.
struct PressureInput {
  std::int64_t systolic = 0;
  std::int64_t diastolic = 0;
  std::optional<std::int64_t> pulse;
};

// "128/82", or with `allowPulse` also "128/82/71". ToolError, with an example, for anything else.
PressureInput parsePressure(std::string_view text, bool allowPulse);

// Why a measurement can't be a real one, one sentence per problem; empty when it is plausible. Catches
// typing slips (a missing or extra digit, swapped numbers) before they land in the log.
std::vector<std::string> implausibilities(std::int64_t systolic, std::int64_t diastolic, std::int64_t pulse);

}  // namespace cardiolith::tool
