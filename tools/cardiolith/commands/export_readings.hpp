#pragma once

#include <cstddef>
#include <string>

#include "input/period_options.hpp"
#include "log/data_folder.hpp"

namespace cardiolith::tool {

struct ExportedReadings {
  // The file's bytes.
  std::string text;
  std::size_t count = 0;
};

// The readings of the period the options choose (everything when they choose none), oldest first, as
// `format` (csv, tsv, json or fhir) writes them, read under a shared lock. ToolError for a period or tag
// that can't be read, or a log that can't be encoded.
[[nodiscard]] ExportedReadings exportReadings(const DataFolder& folder, const PeriodOptions& period,
                                              const std::string& format);

}  // namespace cardiolith::tool
