#pragma once

#include <string_view>

namespace cardiolith::detail {

// Writes the message to standard error and aborts the process.
[[noreturn]] void fatalError(std::string_view message) noexcept;

}  // namespace cardiolith::detail
