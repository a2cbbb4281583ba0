#pragma once

#include "cardiolith/model/reading.hpp"

namespace cardiolith {

// The readings document: every reading of the log, in the caller's order.
struct Readings {
  ReadingList readings;
};

}  // namespace cardiolith
