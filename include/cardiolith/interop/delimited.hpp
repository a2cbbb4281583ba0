#pragma once

#include <functional>
#include <istream>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "cardiolith/analysis/blood_pressure_analysis.hpp"
#include "cardiolith/interop/reader.hpp"
#include "cardiolith/model/reading.hpp"
#include "cardiolith/model/tag.hpp"

// Readings as separated text: the tool's own CSV and TSV, and the spreadsheets of other apps.
namespace cardiolith::interop {

// The tool's own table. Its header ("Date,Systolic,Diastolic,Pulse,Category,Tags,Notes,ID", tabs for TSV)
// is how a reader knows the table for one of ours, and so undoes what the writer did to its cells:
// - cells are quoted as RFC 4180 says when they hold the separator, a quote or a line break;
// - a cell that a spreadsheet would run as a formula (starting with =, +, -, @, a tab or a carriage
//   return, after any apostrophes) gets one more leading apostrophe, which our reader takes off again.
//   Cells starting with apostrophes and no such character are left alone, so "'hello" stays "'hello";
// - dates are local time to the minute with the UTC offset ("2025-01-12 08:12 +01:00"), empty outside
//   the years 1-9999;
// - tags are their titles, sorted, joined by "; ", with "\" and ";" inside a title escaped by "\".
struct DelimitedWriterOptions {
  char separator = ',';
  // The text of the Category column; by default the case's name in the library ("veryHigh").
  std::function<std::string(BloodPressureAnalysis)> categoryName;
};

// Writes the header and one row per reading, in the order given, to `out`. Tag ids without a tag among
// `tags` are left out of the row. Throws std::invalid_argument for a separator other than ',' and '\t'.
void writeDelimited(std::ostream& out, const ReadingList& readings, const std::vector<Tag>& tags,
                    const DelimitedWriterOptions& options);

// Reads a table with a header row from `in`, which must stay alive while the reader is used:
// - separator: ',' ';' or tab, the one that splits the header into the most columns (or `separator`);
// - a UTF-8 byte-order mark, CRLF or LF line ends, RFC 4180 quoting with line breaks inside cells;
// - columns by their English header, ignoring case, units in brackets and columns it does not know, or
//   by `options.columns` (then a first row whose systolic cell is not a number is taken as a header);
// - dates as ReaderOptions and the parse of common forms allow. A slashed date whose day/month order no
//   date of the file settles is an ImportError asking for a date format;
// - "-" or an empty cell is an absent value (in other apps' tables; in ours a cell is its text).
// Rows without a pulse are skipped. Throws ImportError when the header names no date or pressures.
[[nodiscard]] std::unique_ptr<ReadingReader> readDelimited(std::istream& in, const ReaderOptions& options,
                                                           std::optional<char> separator = std::nullopt);

// Checks column roles as readDelimited takes them in ReaderOptions::columns, before any file is read: each
// must name a role, and together they must name a date (or a date and time, or a timestamp), systolic and
// diastolic. Throws ImportError naming the first name that is no role, or what is missing.
void checkColumns(const std::vector<std::string>& columns);

}  // namespace cardiolith::interop
