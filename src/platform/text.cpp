#include "cardiolith/platform/text.hpp"

#include <unicode/normalizer2.h>
#include <unicode/utf8.h>

#include <functional>
#include <stdexcept>

#include "platform/icu_strings.hpp"

namespace cardiolith::text {
namespace {

const icu::Normalizer2& nfc() {
  static const icu::Normalizer2* const instance = [] {
    UErrorCode status = U_ZERO_ERROR;
    const auto* normalizer = icu::Normalizer2::getNFCInstance(status);
    if (U_FAILURE(status))
      throw std::runtime_error(std::string("ICU NFC data unavailable: ") + u_errorName(status));
    return normalizer;
  }();
  return *instance;
}

}  // namespace

bool isASCII(std::string_view text) noexcept {
  for (const char c : text) {
    if (static_cast<unsigned char>(c) >= 0x80) return false;
  }
  return true;
}

bool isValidUTF8(std::string_view text) noexcept {
  const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
  const auto length = static_cast<int32_t>(text.size());
  int32_t offset = 0;
  while (offset < length) {
    if (bytes[offset] < 0x80) {
      ++offset;
      continue;
    }
    UChar32 c;
    U8_NEXT(bytes, offset, length, c);
    if (c < 0) return false;
  }
  return true;
}

std::string canonical(std::string_view text) {
  if (isASCII(text)) return std::string(text);
  UErrorCode status = U_ZERO_ERROR;
  const auto normalized = nfc().normalize(detail::toICU(text), status);
  if (U_FAILURE(status))
    throw std::runtime_error(std::string("NFC normalisation failed: ") + u_errorName(status));
  return detail::fromICU(normalized);
}

bool canonicallyEqual(std::string_view a, std::string_view b) {
  if (a == b) return true;
  if (isASCII(a) && isASCII(b)) return false;  // ASCII is its own canonical form
  return canonical(a) == canonical(b);
}

std::size_t canonicalHash(std::string_view text) {
  if (isASCII(text)) return std::hash<std::string_view>{}(text);
  return std::hash<std::string>{}(canonical(text));
}

int canonicalCompare(std::string_view a, std::string_view b) {
  // UTF-8 byte order is Unicode scalar value order, so the NFC forms compare as bytes.
  if (isASCII(a) && isASCII(b)) return a.compare(b);
  return canonical(a).compare(canonical(b));
}

}  // namespace cardiolith::text
