#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <optional>

// A seam for testing what the library does when the disk fills up. Every file write of the library goes
// through writeSome(); a test can give all of them a byte budget, after which writes fail with ENOSPC.
namespace cardiolith::detail::write_faults {

// From now on, writes fail with ENOSPC once `bytes` more bytes have been written (a write that would
// cross the limit writes up to it, like a disk filling up); nullopt lifts the limit. Process-wide.
void failAfter(std::optional<std::uint64_t> bytes);

// ::write() within the budget: writes at most what is left of it, or fails with errno ENOSPC.
::ssize_t writeSome(int fd, const void* data, std::size_t size);

}  // namespace cardiolith::detail::write_faults
