#include "platform/fatal.hpp"

#include <cstdio>
#include <cstdlib>

namespace cardiolith::detail {

void fatalError(std::string_view message) noexcept {
  std::fprintf(stderr, "Fatal error: %.*s\n", static_cast<int>(message.size()), message.data());
  std::fflush(stderr);
  std::abort();
}

}  // namespace cardiolith::detail
