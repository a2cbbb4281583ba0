#include "cardiolith/platform/text.hpp"

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
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

namespace {

// Calls `visit` with each code point of UTF-8 text; invalid sequences come as U+FFFD.
template <class Visit>
void forEachCodePoint(std::string_view text, Visit visit) {
  const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
  const auto length = static_cast<int32_t>(text.size());
  for (int32_t offset = 0; offset < length;) {
    UChar32 c;
    U8_NEXT(bytes, offset, length, c);
    visit(c < 0 ? 0xFFFD : c);
  }
}

bool isBidiControl(UChar32 c) { return (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069); }

}  // namespace

std::string printable(std::string_view text) {
  icu::UnicodeString result;
  bool afterCarriageReturn = false;
  forEachCodePoint(text, [&](UChar32 c) {
    const bool lineFeedAfterReturn = afterCarriageReturn && c == '\n';
    afterCarriageReturn = c == '\r';
    if (lineFeedAfterReturn || isBidiControl(c)) return;
    if (u_charType(c) == U_CONTROL_CHAR) c = ' ';
    result.append(c);
  });
  return detail::fromICU(result);
}

bool isBlank(std::string_view text) {
  bool blank = true;
  forEachCodePoint(text, [&](UChar32 c) {
    if (!u_hasBinaryProperty(c, UCHAR_WHITE_SPACE) &&
        !u_hasBinaryProperty(c, UCHAR_DEFAULT_IGNORABLE_CODE_POINT))
      blank = false;
  });
  return blank;
}

std::size_t codePointCount(std::string_view text) noexcept {
  std::size_t count = 0;
  forEachCodePoint(text, [&](UChar32) { ++count; });
  return count;
}

}  // namespace cardiolith::text
