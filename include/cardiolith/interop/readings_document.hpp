#pragma once

#include <istream>
#include <memory>

#include "cardiolith/interop/reader.hpp"

namespace cardiolith::interop {

// Reads the log's own readings document (a backup, or another log) from `in`, with ids, tag ids and
// health-store ids as they are; positions are "readings[N]". The document is decoded whole, as the model's
// codec does for the log itself, before the first reading is returned: a document that does not decode is
// an ImportError naming the member and the reason. Write one with json::encode.
[[nodiscard]] std::unique_ptr<ReadingReader> readReadingsDocument(std::istream& in);

}  // namespace cardiolith::interop
