#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cardiolith/export.hpp"

namespace cardiolith {

// Joins items into the locale's list text ("a, b, and c"), over ICU.
// An empty locale id means the default locale. One formatter may be used from several threads.
class CARDIOLITH_EXPORT ListFormatter {
 public:
  explicit ListFormatter(std::string localeID = "");
  virtual ~ListFormatter();
  ListFormatter(const ListFormatter&) = delete;
  ListFormatter& operator=(const ListFormatter&) = delete;

  // Nothing when the items cannot be formatted (ICU reports an error).
  [[nodiscard]] virtual std::optional<std::string> string(const std::vector<std::string>& items) const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace cardiolith
