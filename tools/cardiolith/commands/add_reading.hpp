#pragma once

#include <cardiolith/model/reading.hpp>
#include <cardiolith/platform/date.hpp>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "log/data_folder.hpp"

namespace cardiolith::tool {

// One reading to add, as the command line and the web page both collect it.
struct NewReading {
  std::int64_t systolic = 0;
  std::int64_t diastolic = 0;
  std::int64_t pulse = 0;
  // When it was taken, as DateReader::readingTime read it (which already refused a future date unless
  // forced); absent: now.
  std::optional<Date> date;
  std::optional<std::string> note;
  // Tag titles, matched as `cardiolith add --tag` matches them.
  std::vector<std::string> tags;
  // Keep values outside the usual human range, or a duplicate of a reading in the log.
  bool force = false;
};

struct AddedReading {
  std::shared_ptr<Reading> reading;
  // The reading's short id in the log it joined.
  std::string shortId;
  // The titles of its tags, sorted.
  std::vector<std::string> tagTitles;
  // Set when this reading started the log: the readings file that was created.
  std::optional<std::filesystem::path> newLogFile;
};

// Checks the reading (plausible values unless forced, a valid UTF-8 note, known tags), then, under the
// exclusive folder lock, refuses it when the log already holds the same measurement (unless forced), adds
// it and saves it durably with its undo record before returning. ToolError with a message for the person
// when it is refused or can't be saved; the log is then as it was.
[[nodiscard]] AddedReading addReading(const DataFolder& folder, const NewReading& request);

}  // namespace cardiolith::tool
