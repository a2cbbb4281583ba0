#pragma once

#include <vector>

#include "cardiolith/interop/reader.hpp"

namespace cardiolith::interop::testing {

// Every item a reader yields, in order.
inline std::vector<ReaderItem> readAll(ReadingReader& reader) {
  std::vector<ReaderItem> items;
  while (auto item = reader.next()) items.push_back(std::move(*item));
  return items;
}

inline const Reading& readingOf(const ReaderItem& item) { return *std::get<IncomingReading>(item).reading; }

}  // namespace cardiolith::interop::testing
