#pragma once

#include <cstdint>

namespace cardiolith::detail::memory {

// The bytes this machine's memory, RAM and swap together, can hold at most: a bound on any one object a
// call may build. UINT64_MAX when the system does not say. Safe from any thread.
std::uint64_t capacityBytes() noexcept;

}  // namespace cardiolith::detail::memory
