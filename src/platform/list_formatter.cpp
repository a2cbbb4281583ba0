#include "cardiolith/platform/list_formatter.hpp"

#include <unicode/listformatter.h>
#include <unicode/locid.h>

#include <stdexcept>

#include "platform/icu_strings.hpp"
#include "platform/thread_annotations.hpp"

namespace cardiolith {

struct ListFormatter::Impl {
  detail::Mutex mutex;  // ICU formatters are not safe for concurrent use
  std::unique_ptr<icu::ListFormatter> format CARDIOLITH_PT_GUARDED_BY(mutex);
};

ListFormatter::ListFormatter(std::string localeID) : impl_(std::make_unique<Impl>()) {
  const icu::Locale locale = localeID.empty() ? icu::Locale::getDefault() : icu::Locale(localeID.c_str());
  UErrorCode status = U_ZERO_ERROR;
  impl_->format.reset(icu::ListFormatter::createInstance(locale, status));
  if (U_FAILURE(status) || !impl_->format) {
    throw std::invalid_argument("ListFormatter: no list format for locale \"" + localeID + "\" (" +
                                u_errorName(status) + ")");
  }
}

ListFormatter::~ListFormatter() = default;

std::optional<std::string> ListFormatter::string(const std::vector<std::string>& items) const {
  std::vector<icu::UnicodeString> unicodeItems;
  unicodeItems.reserve(items.size());
  for (const auto& item : items) unicodeItems.push_back(detail::toICU(item));
  icu::UnicodeString text;
  UErrorCode status = U_ZERO_ERROR;
  {
    detail::MutexLock lock(impl_->mutex);
    impl_->format->format(unicodeItems.data(), static_cast<int32_t>(unicodeItems.size()), text, status);
  }
  if (U_FAILURE(status)) return std::nullopt;
  return detail::fromICU(text);
}

}  // namespace cardiolith
