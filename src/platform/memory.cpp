#include "platform/memory.hpp"

#include <sys/sysinfo.h>

#include <limits>

namespace cardiolith::detail::memory {

std::uint64_t capacityBytes() noexcept {
  struct sysinfo info {};
  if (::sysinfo(&info) != 0) return std::numeric_limits<std::uint64_t>::max();
  const std::uint64_t units = std::uint64_t{info.totalram} + std::uint64_t{info.totalswap};
  const std::uint64_t unitSize = info.mem_unit == 0 ? 1 : info.mem_unit;
  if (units > std::numeric_limits<std::uint64_t>::max() / unitSize)
    return std::numeric_limits<std::uint64_t>::max();
  return units * unitSize;
}

}  // namespace cardiolith::detail::memory
