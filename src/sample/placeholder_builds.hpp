#pragma once

namespace cardiolith::detail {

// How many times this process has built the placeholder summary: 0 before the first access, then 1.
int placeHolderBuildCount() noexcept;

}  // namespace cardiolith::detail
