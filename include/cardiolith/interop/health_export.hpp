#pragma once

#include <istream>
#include <memory>

#include "cardiolith/interop/reader.hpp"

namespace cardiolith::interop {

// Reads a phone health app's export.xml from `in` (which must outlive the reader) with a streaming XML
// parser, so a file of gigabytes costs memory for its readings and heart rates only:
// - a reading is a Correlation of type HKCorrelationTypeIdentifierBloodPressure holding the Records
//   HKQuantityTypeIdentifierBloodPressureSystolic and ...Diastolic (mmHg); the same Records outside a
//   Correlation are copies and are ignored;
// - its pulse is the HKQuantityTypeIdentifierHeartRate Record closest in time within 5 minutes, rounded
//   to a whole beat; a reading with none is skipped;
// - dates look like "2025-01-12 08:12:00 +0100"; positions are "Correlation[N] (line L)".
// The internal DTD is read, external entities never are. The readings come once the whole file has been
// read, since a heart rate may come after its pressure. `options.progress` hears of every block read.
// Throws ImportError for text that is not well-formed XML, with its line.
[[nodiscard]] std::unique_ptr<ReadingReader> readHealthExport(std::istream& in, const ReaderOptions& options);

}  // namespace cardiolith::interop
