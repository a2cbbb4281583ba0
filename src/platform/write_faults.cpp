#include "platform/write_faults.hpp"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <limits>

namespace cardiolith::detail::write_faults {
namespace {

constexpr std::uint64_t unlimited = std::numeric_limits<std::uint64_t>::max();

// Bytes that writes may still write; `unlimited` when no test has set a budget.
std::atomic<std::uint64_t> budget{unlimited};

// Takes up to `wanted` bytes from the budget and returns how many were granted.
std::size_t claim(std::size_t wanted) {
  std::uint64_t left = budget.load(std::memory_order_relaxed);
  for (;;) {
    if (left == unlimited) return wanted;
    const std::uint64_t granted = std::min<std::uint64_t>(left, wanted);
    if (budget.compare_exchange_weak(left, left - granted, std::memory_order_relaxed)) {
      return static_cast<std::size_t>(granted);
    }
  }
}

void refund(std::size_t bytes) {
  std::uint64_t left = budget.load(std::memory_order_relaxed);
  while (left != unlimited && !budget.compare_exchange_weak(left, left + bytes, std::memory_order_relaxed)) {
  }
}

}  // namespace

void failAfter(std::optional<std::uint64_t> bytes) {
  budget.store(bytes ? std::min(*bytes, unlimited - 1) : unlimited, std::memory_order_relaxed);
}

::ssize_t writeSome(int fd, const void* data, std::size_t size) {
  const std::size_t granted = size == 0 ? 0 : claim(size);
  if (size != 0 && granted == 0) {
    errno = ENOSPC;
    return -1;
  }
  const ::ssize_t written = ::write(fd, data, granted);
  const std::size_t taken = written > 0 ? static_cast<std::size_t>(written) : 0;
  if (taken < granted) refund(granted - taken);  // a short or failed write keeps the rest of its share
  return written;
}

}  // namespace cardiolith::detail::write_faults
