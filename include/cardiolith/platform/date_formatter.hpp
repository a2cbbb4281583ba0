#pragma once

#include <memory>
#include <string>

#include "cardiolith/export.hpp"
#include "cardiolith/platform/date.hpp"

namespace cardiolith {

// Formats instants with an ICU pattern ("yyyy-MM-dd HH:mm"), locale and time zone.
// An empty locale id means the default locale; an empty time-zone id means the default time zone at the
// moment of formatting. One formatter may be used from several threads.
class CARDIOLITH_EXPORT DateFormatter {
 public:
  explicit DateFormatter(std::string icuPattern, std::string localeID = "", std::string timeZoneID = "");
  virtual ~DateFormatter();
  DateFormatter(const DateFormatter&) = delete;
  DateFormatter& operator=(const DateFormatter&) = delete;

  [[nodiscard]] virtual std::string string(Date date) const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace cardiolith
