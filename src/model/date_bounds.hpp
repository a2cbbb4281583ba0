#pragma once

#include "cardiolith/platform/date.hpp"

namespace cardiolith::detail {

// Whether a period from `from` to `to`, both included, keeps a reading dated `date`. Only a date that is
// provably outside a bound is left out: a date unordered with the bounds (NaN) is kept.
inline bool keptByPeriod(Date date, Date from, Date to) { return !(date < from) && !(to < date); }

}  // namespace cardiolith::detail
