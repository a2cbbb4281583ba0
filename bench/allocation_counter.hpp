#pragma once

#include <cstdint>

namespace cardiolith::bench {

// The number of allocations made through the global operator new on the calling thread so far. The
// benchmark program replaces operator new to count them; ICU's own allocations (through malloc) are not
// counted.
std::uint64_t allocationsOnThisThread() noexcept;

}  // namespace cardiolith::bench
