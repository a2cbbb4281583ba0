#pragma once

#include <optional>
#include <string_view>

namespace cardiolith::tool::serve {

// The page's files (serve/web/), built into the program so that it works offline and serves exactly the
// page it was built with.
struct WebAsset {
  std::string_view contentType;
  std::string_view body;
};

// The file served at this URL path ("/" is the page itself), or nullopt.
[[nodiscard]] std::optional<WebAsset> findWebAsset(std::string_view path);

}  // namespace cardiolith::tool::serve
