#include "cardiolith/platform/text.hpp"

#include <unicode/coll.h>
#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <utility>
#include <vector>

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

const icu::Normalizer2& nfd() {
  static const icu::Normalizer2* const instance = [] {
    UErrorCode status = U_ZERO_ERROR;
    const auto* normalizer = icu::Normalizer2::getNFDInstance(status);
    if (U_FAILURE(status))
      throw std::runtime_error(std::string("ICU NFD data unavailable: ") + u_errorName(status));
    return normalizer;
  }();
  return *instance;
}

std::string decomposed(std::string_view text) {
  UErrorCode status = U_ZERO_ERROR;
  const auto normalized = nfd().normalize(detail::toICU(text), status);
  if (U_FAILURE(status))
    throw std::runtime_error(std::string("NFD normalisation failed: ") + u_errorName(status));
  return detail::fromICU(normalized);
}

// Whether a character begins at `offset` that combines with nothing before it (or the text ends there).
bool startsIndependentCharacter(std::string_view text, std::size_t offset) {
  if (offset == text.size() || static_cast<unsigned char>(text[offset]) < 0x80) return true;
  const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
  auto at = static_cast<int32_t>(offset);
  UChar32 c;
  U8_NEXT(bytes, at, static_cast<int32_t>(text.size()), c);
  return c < 0 || nfd().hasBoundaryBefore(c);
}

// Every occurrence of the bytes of `target` that ends before an independent character (a match then starts
// at one too, when the target is ASCII) replaced by `replacement`.
std::string replacingBytes(std::string_view text, std::string_view target, std::string_view replacement,
                           bool checkEnds) {
  std::string result;
  result.reserve(text.size());
  std::size_t copied = 0;
  for (std::size_t match = text.find(target); match != std::string_view::npos;) {
    if (checkEnds && !startsIndependentCharacter(text, match + target.size())) {
      match = text.find(target, match + 1);
      continue;
    }
    result.append(text.substr(copied, match - copied)).append(replacement);
    copied = match + target.size();
    match = text.find(target, copied);
  }
  result.append(text.substr(copied));
  return result;
}

// What an ASCII target needs to know of a text: whether it is valid UTF-8 and, if so, whether a character
// of it decomposes to ASCII alone (GREEK QUESTION MARK to ";", KELVIN SIGN to "K"), for only such a
// character can match an ASCII target without showing its bytes.
enum class TextForASCII { bytesSuffice, hasASCIIDecompositions, invalidUTF8 };

TextForASCII examineForASCII(std::string_view text) {
  const icu::Normalizer2& normalizer = nfd();
  const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
  const auto length = static_cast<int32_t>(text.size());
  icu::UnicodeString decomposition;
  auto result = TextForASCII::bytesSuffice;
  for (int32_t offset = 0; offset < length;) {
    if (bytes[offset] < 0x80) {
      ++offset;
      continue;
    }
    UChar32 c;
    U8_NEXT(bytes, offset, length, c);
    if (c < 0) return TextForASCII::invalidUTF8;
    // A character that decomposes to ASCII alone is a singleton, which never occurs in NFC: the quick check
    // (a table look-up) leaves out the precomposed letters that notes are full of.
    if (result == TextForASCII::hasASCIIDecompositions ||
        u_getIntPropertyValue(c, UCHAR_NFC_QUICK_CHECK) != UNORM_NO ||
        !normalizer.getDecomposition(c, decomposition)) {
      continue;
    }
    bool allASCII = true;
    for (int32_t i = 0; i < decomposition.length(); ++i) allASCII = allASCII && decomposition[i] < 0x80;
    if (allASCII) result = TextForASCII::hasASCIIDecompositions;
  }
  return result;
}

// Valid UTF-8 in its decomposed form (NFD), with the places where a character begins that combines with
// nothing before it: there the decomposed text of what precedes ends, so a run between two such places is
// canonically equivalent to another text exactly when their decomposed forms are equal.
struct Decomposition {
  std::string text;
  std::vector<std::pair<std::size_t, std::size_t>> boundaries;  // (offset in text, offset in the original)
};

Decomposition decompose(std::string_view original) {
  Decomposition result;
  const auto* bytes = reinterpret_cast<const uint8_t*>(original.data());
  const auto length = static_cast<int32_t>(original.size());
  int32_t segmentStart = 0;
  const auto closeSegment = [&](int32_t end) {
    result.boundaries.emplace_back(result.text.size(), static_cast<std::size_t>(segmentStart));
    const std::string_view segment =
        original.substr(static_cast<std::size_t>(segmentStart), static_cast<std::size_t>(end - segmentStart));
    result.text += isASCII(segment) ? std::string(segment) : decomposed(segment);
    segmentStart = end;
  };
  for (int32_t offset = 0; offset < length;) {
    const int32_t start = offset;
    UChar32 c;
    U8_NEXT(bytes, offset, length, c);
    if (start > segmentStart && nfd().hasBoundaryBefore(c)) closeSegment(start);
  }
  if (length > segmentStart) closeSegment(length);
  result.boundaries.emplace_back(result.text.size(), original.size());
  return result;
}

std::string replacingCanonically(std::string_view text, std::string_view target,
                                 std::string_view replacement) {
  const std::string wanted = decomposed(target);
  const Decomposition haystack = decompose(text);
  const auto& boundaries = haystack.boundaries;
  std::string result;
  result.reserve(text.size());
  std::size_t copied = 0;  // in the original text
  for (std::size_t b = 0; b + 1 < boundaries.size(); ++b) {
    const std::size_t at = boundaries[b].first;
    if (haystack.text.compare(at, wanted.size(), wanted) != 0) continue;
    // A match must end where a character begins, too.
    const auto end = std::lower_bound(
        boundaries.begin() + static_cast<std::ptrdiff_t>(b) + 1, boundaries.end(), at + wanted.size(),
        [](const auto& boundary, std::size_t offset) { return boundary.first < offset; });
    if (end == boundaries.end() || end->first != at + wanted.size()) continue;
    result.append(text.substr(copied, boundaries[b].second - copied)).append(replacement);
    copied = end->second;
    b = static_cast<std::size_t>(end - boundaries.begin()) - 1;
  }
  result.append(text.substr(copied));
  return result;
}

}  // namespace

std::string replacingOccurrences(std::string_view text, std::string_view target,
                                 std::string_view replacement) {
  if (target.empty()) return std::string(text);
  if (isASCII(target)) {
    if (isASCII(text)) return replacingBytes(text, target, replacement, false);
    // An ASCII target matches its own bytes, each match ending before an independent character, unless the
    // text holds a character that decomposes to ASCII.
    switch (examineForASCII(text)) {
      case TextForASCII::bytesSuffice:
        return replacingBytes(text, target, replacement, true);
      case TextForASCII::invalidUTF8:
        return replacingBytes(text, target, replacement, false);
      case TextForASCII::hasASCIIDecompositions:
        break;
    }
  } else if (!isValidUTF8(text) || !isValidUTF8(target)) {
    return replacingBytes(text, target, replacement, false);
  }
  return replacingCanonically(text, target, replacement);
}

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

std::string caseFolded(std::string_view text) {
  auto folded = detail::toICU(text);
  folded.foldCase(U_FOLD_CASE_DEFAULT);
  return canonical(detail::fromICU(folded));
}

int localeCompare(std::string_view a, std::string_view b) {
  // A collator is not thread-safe; a clone per thread is, and the default locale rarely changes.
  thread_local std::unique_ptr<icu::Collator> collator;
  thread_local std::string collatorLocale;
  const std::string locale = icu::Locale::getDefault().getName();
  if (!collator || collatorLocale != locale) {
    UErrorCode status = U_ZERO_ERROR;
    collator.reset(icu::Collator::createInstance(icu::Locale::getDefault(), status));
    if (U_FAILURE(status)) collator.reset();
    collatorLocale = locale;
  }
  if (collator) {
    UErrorCode status = U_ZERO_ERROR;
    const auto order =
        collator->compareUTF8(icu::StringPiece(a.data(), static_cast<int32_t>(a.size())),
                              icu::StringPiece(b.data(), static_cast<int32_t>(b.size())), status);
    if (U_SUCCESS(status) && order != UCOL_EQUAL) return order == UCOL_LESS ? -1 : 1;
  }
  return canonicalCompare(a, b);
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
