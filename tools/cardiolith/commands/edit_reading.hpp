#pragma once

#include <cardiolith/model/reading.hpp>
#include <cardiolith/platform/date.hpp>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "log/data_folder.hpp"

namespace cardiolith::tool {

// A correction of one reading, as the command line and the web page both collect it. What is absent stays
// as it was.
struct ReadingEdit {
  // The reading's id, or a unique start of it of at least four characters.
  std::string id;
  std::optional<std::int64_t> systolic;
  std::optional<std::int64_t> diastolic;
  std::optional<std::int64_t> pulse;
  // As DateReader::readingTime read it, which already refused a future date unless forced.
  std::optional<Date> date;
  // Replaces the note; `removeNote` drops it.
  std::optional<std::string> note;
  bool removeNote = false;
  // Tag titles to add and to remove, matched as `cardiolith edit --tag/--untag` match them.
  std::vector<std::string> tags;
  std::vector<std::string> untags;
  // Keep values outside the usual human range.
  bool force = false;

  // Whether it changes anything at all.
  [[nodiscard]] bool changesSomething() const {
    return systolic || diastolic || pulse || date || note || removeNote || !tags.empty() || !untags.empty();
  }
};

struct EditedReading {
  // The reading as it is now; it kept its id.
  std::shared_ptr<Reading> reading;
  // "Before: …" and "After: …" lines with the short id, for the person.
  std::string before;
  std::string after;
  // The titles of its tags, sorted.
  std::vector<std::string> tagTitles;
};

// Checks the edit (plausible values unless forced, a valid UTF-8 note, known tags), then, under the
// exclusive folder lock, replaces the reading with its corrected copy and saves the log durably with its
// undo record before returning. ToolError with a message for the person when the id names no reading (or
// several), the edit is refused, or the log can't be saved; the log is then as it was.
[[nodiscard]] EditedReading editReading(const DataFolder& folder, const ReadingEdit& edit);

}  // namespace cardiolith::tool
