#pragma once

#include <cmath>
#include <functional>
#include <istream>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>

#include "cardiolith/interop/reader.hpp"
#include "fuzz_one_input.hpp"

namespace cardiolith::fuzzing {

// Makes a reader of one import format.
using OpenReader = std::function<std::unique_ptr<interop::ReadingReader>(std::istream&)>;

// The readings that a reader made by `open` finds in `text`; an ImportError (text that is not the format)
// gives none. Any other exception escapes and ends the run as a finding.
inline ReadingList readingsOf(std::string_view text, const OpenReader& open) {
  std::istringstream in{std::string(text)};
  ReadingList readings;
  try {
    const auto reader = open(in);
    while (auto item = reader->next()) {
      if (auto* incoming = std::get_if<interop::IncomingReading>(&*item)) {
        require(!incoming->position.empty(), "every item says where it came from");
        readings.push_back(incoming->reading);
      }
    }
  } catch (const interop::ImportError&) {
    return {};
  }
  return readings;
}

// Throws PropertyFailure, showing `written`, unless a reader made by `open` finds in it the same readings
// as `readings`: values and notes equal, dates in the same step of `dateStep` seconds (1e-3 for
// milliseconds, 60 for minutes).
inline void requireReadBack(const ReadingList& readings, const std::string& written, const OpenReader& open,
                            double dateStep) {
  const auto again = readingsOf(written, open);
  const auto fail = [&](const std::string& what, std::size_t index) {
    throw PropertyFailure("round trip changed " + what + " of reading " + std::to_string(index) +
                          "; written:\n" + written);
  };
  if (readings.size() != again.size()) fail("the count", 0);
  for (std::size_t i = 0; i < readings.size(); ++i) {
    const Reading& a = *readings[i];
    const Reading& b = *again[i];
    if (a.systolic() != b.systolic() || a.diastolic() != b.diastolic() || a.pulse() != b.pulse())
      fail("values", i);
    if (a.notes().value_or("") != b.notes().value_or("")) fail("the notes", i);
    const double step = std::floor(a.date().timeIntervalSinceReferenceDate() / dateStep);
    if (std::abs(step - std::floor(b.date().timeIntervalSinceReferenceDate() / dateStep)) > 1)
      fail("the date", i);
  }
}

}  // namespace cardiolith::fuzzing
