#pragma once

#include <istream>
#include <memory>

#include "cardiolith/interop/reader.hpp"

namespace cardiolith::interop {

// Reads the log's own readings document (a backup, or another log) from `in`, which must outlive the
// reader, with ids, tag ids and health-store ids as they are; positions are "readings[N]". The file is
// read a block at a time and each reading decoded as it is reached, so memory grows with the readings
// kept, not with the file; the readings are those json::decode gives for the whole text. A document that
// does not decode is an ImportError, thrown by next() when the fault is reached, naming the member and
// the reason ("readings[41].pulse: 1.5 is not an integer") or the byte of broken JSON; a document that
// repeats its "readings" member is refused too. Write one with json::encode.
[[nodiscard]] std::unique_ptr<ReadingReader> readReadingsDocument(std::istream& in,
                                                                  const ReaderOptions& options = {});

}  // namespace cardiolith::interop
