#pragma once

#include <cstddef>
#include <cstdint>

// The system random source (getrandom), unseeded; safe to use from any thread.
namespace cardiolith::detail::random {

void fill(void* buffer, std::size_t size);
std::uint64_t next64();

// An unbiased integer in [0, n) for n >= 1: the high half of the 128-bit product of a random 64-bit value
// and n, drawn again while the low half is below 2^64 mod n.
std::uint64_t uniformBelow(std::uint64_t n);

}  // namespace cardiolith::detail::random
