#pragma once

#include <unicode/unistr.h>

#include <string>
#include <string_view>

namespace cardiolith::detail {

inline icu::UnicodeString toICU(std::string_view utf8) {
  return icu::UnicodeString::fromUTF8(icu::StringPiece(utf8.data(), static_cast<int32_t>(utf8.size())));
}

inline std::string fromICU(const icu::UnicodeString& text) {
  std::string utf8;
  text.toUTF8String(utf8);
  return utf8;
}

}  // namespace cardiolith::detail
