#include "platform/random.hpp"

#include <sys/random.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <system_error>

namespace cardiolith::detail::random {
namespace {
__extension__ typedef unsigned __int128 UInt128;  // GCC and clang both have it on 64-bit targets
}  // namespace

void fill(void* buffer, std::size_t size) {
  auto* bytes = static_cast<unsigned char*>(buffer);
  while (size > 0) {
    const ssize_t got = ::getrandom(bytes, size, 0);
    if (got < 0) {
      if (errno == EINTR) continue;
      throw std::system_error(errno, std::generic_category(), "getrandom");
    }
    bytes += got;
    size -= static_cast<std::size_t>(got);
  }
}

std::uint64_t next64() {
  // A small per-thread buffer keeps the system call off the per-draw path.
  struct Buffer {
    std::uint64_t values[32];
    std::size_t next = 32;
  };
  thread_local Buffer buffer;
  if (buffer.next == 32) {
    fill(buffer.values, sizeof buffer.values);
    buffer.next = 0;
  }
  return buffer.values[buffer.next++];
}

std::uint64_t uniformBelow(std::uint64_t n) {
  if (n == 0) throw std::invalid_argument("uniformBelow: the bound must be at least 1");
  // 2^64 mod n, computed without 128-bit division: (2^64 - n) mod n.
  const std::uint64_t threshold = (0 - n) % n;
  for (;;) {
    const UInt128 product = static_cast<UInt128>(next64()) * n;
    if (static_cast<std::uint64_t>(product) >= threshold) return static_cast<std::uint64_t>(product >> 64);
  }
}

}  // namespace cardiolith::detail::random
