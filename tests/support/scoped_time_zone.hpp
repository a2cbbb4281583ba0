#pragma once

#include "support/scoped_variable.hpp"

namespace cardiolith::testing {

// Sets the TZ environment variable for the life of the object and restores it afterwards.
struct ScopedTimeZone : ScopedVariable {
  explicit ScopedTimeZone(const char* zone) : ScopedVariable("TZ", zone) {}
};

}  // namespace cardiolith::testing
