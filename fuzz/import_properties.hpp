#pragma once

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>

#include "cardiolith/interop/reader.hpp"

namespace cardiolith::fuzzing {

// The readings a reader made by `open` finds; an ImportError (input that is not the format) gives none.
// Any other exception escapes and ends the run as a finding.
inline ReadingList readingsOf(const std::function<std::unique_ptr<interop::ReadingReader>()>& open) {
  ReadingList readings;
  try {
    auto reader = open();
    while (auto item = reader->next()) {
      if (auto* incoming = std::get_if<interop::IncomingReading>(&*item)) {
        if (incoming->position.empty()) std::abort();  // every item says where it came from
        readings.push_back(incoming->reading);
      }
    }
  } catch (const interop::ImportError&) {
    return {};
  }
  return readings;
}

// Aborts, printing `written`, unless both lists hold the same readings: values and notes equal, dates in
// the same step of `dateStep` seconds (1e-3 for milliseconds, 60 for minutes).
inline void expectSameReadings(const ReadingList& first, const ReadingList& second, double dateStep,
                               const std::string& written) {
  const auto fail = [&](const char* what, std::size_t index) {
    std::fprintf(stderr, "round trip changed %s of reading %zu; written:\n%s\n", what, index,
                 written.c_str());
    std::abort();
  };
  if (first.size() != second.size()) fail("the count", 0);
  for (std::size_t i = 0; i < first.size(); ++i) {
    const Reading& a = *first[i];
    const Reading& b = *second[i];
    if (a.systolic() != b.systolic() || a.diastolic() != b.diastolic() || a.pulse() != b.pulse())
      fail("values", i);
    if (a.notes().value_or("") != b.notes().value_or("")) fail("the notes", i);
    const double step = std::floor(a.date().timeIntervalSinceReferenceDate() / dateStep);
    if (std::abs(step - std::floor(b.date().timeIntervalSinceReferenceDate() / dateStep)) > 1)
      fail("the date", i);
  }
}

}  // namespace cardiolith::fuzzing
