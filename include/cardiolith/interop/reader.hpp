#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

#include "cardiolith/model/reading.hpp"

// Readers turn the bytes of one file into readings, one at a time, so that memory grows with the readings
// a caller keeps rather than with the file. They know nothing of a log: ImportPlanner decides what a log
// takes.
namespace cardiolith::interop {

// One reading as a file gave it.
struct IncomingReading {
  // Where it came from: "line 12" in a table, the element's path in JSON and XML ("entry[3].resource").
  std::string position;
  // Its id is empty when the file carries none; its tag ids are set when the file names tags by id.
  std::shared_ptr<Reading> reading;
  // Tags the file names by title (tables do), to be matched against the log's tags.
  std::vector<std::string> tagTitles;
};

// A row that should have been a reading but is not one: a value that is not a number, a date that does
// not parse. Invalid input, so an import fails on it unless the caller chose to skip such rows.
struct InvalidRow {
  std::string position;
  std::string reason;  // what was found and what was expected
};

// A record the reader passed over by design (an observation that is not a blood pressure, a pressure
// with no pulse near it): counted, never an error. `reason` is the same short text for every record
// passed over for the same cause, so callers can count by it.
struct SkippedRecord {
  std::string position;
  std::string reason;
};

using ReaderItem = std::variant<IncomingReading, InvalidRow, SkippedRecord>;

// The input as a whole cannot be read (broken JSON, no column of pressures, a day/month order that the
// file does not settle). what() says where, what was found and what to do.
struct ImportError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// A source of readings. Not safe for concurrent use; one reader reads one input once.
class ReadingReader {
 public:
  virtual ~ReadingReader() = default;
  // The next item in file order, or nothing at the end. Throws ImportError.
  [[nodiscard]] virtual std::optional<ReaderItem> next() = 0;
};

// What readers need to know beyond the bytes.
struct ReaderOptions {
  // Each column's role in order when the header is absent or not in English: date, time, datetime,
  // timestamp, systolic, diastolic, pulse, notes, tags, id, skip.
  std::vector<std::string> columns = {};
  // An ICU pattern ("dd.MM.yyyy") for the date column, instead of guessing among the common forms.
  std::optional<std::string> dateFormat = std::nullopt;
  // Called with the count of input bytes consumed so far, after each block a streaming reader reads,
  // for a progress display.
  std::function<void(std::uint64_t)> progress = nullptr;
  // How many bytes the JSON readers (readings documents, FHIR Bundles) read from the input at a time.
  std::size_t blockSize = std::size_t{1} << 16;
};

}  // namespace cardiolith::interop
