#include "platform/random.hpp"

#include <pthread.h>
#include <sys/random.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <system_error>

namespace cardiolith::detail::random {
namespace {
__extension__ typedef unsigned __int128 UInt128;  // GCC and clang both have it on 64-bit targets

// A small per-thread buffer keeps the system call off the per-draw path: new ids are drawn once per reading
// an import adds, and one getrandom call each was a tenth of a 100,000-row import's time.
constexpr std::size_t kBufferedDraws = 32;
struct DrawBuffer {
  std::uint64_t values[kBufferedDraws];
  std::size_t next = kBufferedDraws;
};
thread_local DrawBuffer drawBuffer;

// A forked child must not hand out the draws its parent is about to hand out too.
[[maybe_unused]] const int forgetDrawsInForkedChild =
    ::pthread_atfork(nullptr, nullptr, [] { drawBuffer.next = kBufferedDraws; });
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
  if (drawBuffer.next == kBufferedDraws) {
    fill(drawBuffer.values, sizeof drawBuffer.values);
    drawBuffer.next = 0;
  }
  return drawBuffer.values[drawBuffer.next++];
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
