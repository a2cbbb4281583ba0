#include "model/json_writer.hpp"

#include <simdjson.h>

#include <bit>
#include <cmath>
#include <cstring>

#include "cardiolith/model/json.hpp"
#include "model/utf8.hpp"

namespace cardiolith::json_detail {
namespace {

bool isSpecial(unsigned char c) noexcept { return c < 0x20 || c == '"' || c == '\\' || c >= 0x80; }

// The first byte at or after `p` that needs escaping or is not ASCII, or `end`. Tests eight bytes at a time:
// in each byte lane the high bit of `flags` ends up set when the byte is below 0x20, is '"' or '\\', or is
// 0x80 or above. A borrow between lanes only flags lanes above a lane that is itself flagged, so the lowest
// flagged lane is always a real hit.
const char* nextSpecial(const char* p, const char* end) noexcept {
  if constexpr (std::endian::native == std::endian::little) {
    constexpr std::uint64_t kOnes = 0x0101010101010101ULL;
    constexpr std::uint64_t kHighBits = 0x8080808080808080ULL;
    while (end - p >= 8) {
      std::uint64_t word;
      std::memcpy(&word, p, sizeof word);
      const std::uint64_t flags = ((word - kOnes * 0x20) | ((word ^ (kOnes * '"')) - kOnes) |
                                   ((word ^ (kOnes * '\\')) - kOnes) | word) &
                                  kHighBits;
      if (flags != 0) return p + std::countr_zero(flags) / 8;
      p += 8;
    }
  }
  while (p != end && !isSpecial(static_cast<unsigned char>(*p))) ++p;
  return p;
}

[[noreturn]] void failInvalidUTF8(std::string_view text, const JsonPath& path) {
  const auto offset = utf8::firstInvalidByte(text).value_or(0);
  throw EncodingError(path.toString() + ": invalid UTF-8 at byte " + std::to_string(offset));
}

}  // namespace

void JsonWriter::number(double value, const JsonPath& path) {
  if (!std::isfinite(value)) {
    const char* text = std::isnan(value) ? "nan" : value > 0 ? "inf" : "-inf";
    throw EncodingError(path.toString() + ": " + text + " is not a finite number");
  }
  char buffer[kMaxNumberLength];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  out_.append(buffer, result.ptr);
}

void JsonWriter::string(std::string_view text, const JsonPath& path) {
  out_ += '"';
  const char* const end = text.data() + text.size();
  const char* run = text.data();  // the start of the bytes not yet copied
  bool sawNonASCII = false;
  for (const char* p = nextSpecial(run, end); p != end; p = nextSpecial(p, end)) {
    const auto c = static_cast<unsigned char>(*p);
    if (c >= 0x80) {
      sawNonASCII = true;  // copied as it is; checked as a whole below
      ++p;
      continue;
    }
    out_.append(run, p);
    escape(c);
    run = ++p;
  }
  out_.append(run, end);
  out_ += '"';
  if (sawNonASCII && !simdjson::validate_utf8(text.data(), text.size())) failInvalidUTF8(text, path);
}

void JsonWriter::escape(unsigned char c) {
  switch (c) {
    case '"':
      out_ += "\\\"";
      return;
    case '\\':
      out_ += "\\\\";
      return;
    case '\b':
      out_ += "\\b";
      return;
    case '\f':
      out_ += "\\f";
      return;
    case '\n':
      out_ += "\\n";
      return;
    case '\r':
      out_ += "\\r";
      return;
    case '\t':
      out_ += "\\t";
      return;
    default: {
      constexpr char kHexDigits[] = "0123456789abcdef";
      const char sequence[] = {'\\', 'u', '0', '0', kHexDigits[c >> 4], kHexDigits[c & 0xF]};
      out_.append(sequence, sizeof sequence);
    }
  }
}

}  // namespace cardiolith::json_detail
