#pragma once

#include <istream>
#include <memory>
#include <string>

#include "cardiolith/interop/reader.hpp"
#include "cardiolith/model/reading.hpp"

// Readings as FHIR R4 resources, the form health records exchange.
namespace cardiolith::interop {

// The identifier system under which a reading's id travels in an Observation.
inline constexpr std::string_view kReadingIdentifierSystem = "urn:cardiolith:reading-id";

// A Bundle of type collection with one vital-signs Observation per reading, in the order given: status
// final, LOINC 85354-9 with components 8480-6 (systolic) and 8462-4 (diastolic) in mm[Hg] and 8867-4
// (heart rate) in /min, effectiveDateTime in local time with its UTC offset (milliseconds kept, finer
// fractions dropped), the notes as Observation.note (left out when empty, which FHIR forbids), the id as
// an identifier. Throws EncodingError for notes that are not UTF-8.
[[nodiscard]] std::string encodeFhirBundle(const ReadingList& readings);

// Reads a FHIR R4 Bundle, or NDJSON with one resource a line, from `in` (which must outlive the reader).
// A blood-pressure panel (85354-9) with systolic and diastolic components in mm[Hg] becomes a reading; its
// pulse is its 8867-4 component or a heart-rate Observation (8867-4) with the same effective time
// (effectiveDateTime or effectivePeriod.start); Observation.note texts, joined by line breaks, are the
// notes; an identifier of kReadingIdentifierSystem is the id. Other resources, and panels with no pulse,
// are skipped. Positions are "entry[N].resource" in a Bundle and "line N" in NDJSON. Both are read a block
// or a line at a time, an entry or a line parsed on its own, holding only panels that wait for a heart
// rate. next() throws ImportError for a Bundle that is not JSON, naming the byte, or that turns out not to
// be a Bundle; in NDJSON a line that is not JSON is an invalid row.
[[nodiscard]] std::unique_ptr<ReadingReader> readFhir(std::istream& in, const ReaderOptions& options = {});

}  // namespace cardiolith::interop
