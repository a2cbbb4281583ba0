#include "plain_reading.hpp"

#include <algorithm>
#include <string_view>

namespace cardiolith::bench {
namespace {

// The value of each byte as a hex digit, or -1.
constexpr std::array<std::int8_t, 256> kHexValues = [] {
  std::array<std::int8_t, 256> values{};
  values.fill(-1);
  for (std::size_t digit = 0; digit < 10; ++digit) values['0' + digit] = static_cast<std::int8_t>(digit);
  for (std::size_t digit = 0; digit < 6; ++digit) {
    values['A' + digit] = static_cast<std::int8_t>(10 + digit);
    values['a' + digit] = static_cast<std::int8_t>(10 + digit);
  }
  return values;
}();

// Where the two hex digits of each byte start in the text.
constexpr std::array<std::uint8_t, 16> kByteOffsets{0,  2,  4,  6,  9,  11, 14, 16,
                                                    19, 21, 24, 26, 28, 30, 32, 34};

}  // namespace

std::optional<UuidBytes> parseUuid(std::string_view text) noexcept {
  if (text.size() != 36 || text[8] != '-' || text[13] != '-' || text[18] != '-' || text[23] != '-') {
    return std::nullopt;
  }
  UuidBytes bytes{};
  int invalid = 0;  // any digit's -1 sets the sign bit
  for (std::size_t byte = 0; byte < bytes.size(); ++byte) {
    const int high = kHexValues[static_cast<unsigned char>(text[kByteOffsets[byte]])];
    const int low = kHexValues[static_cast<unsigned char>(text[kByteOffsets[byte] + 1])];
    invalid |= high | low;
    bytes[byte] = static_cast<std::uint8_t>(high << 4 | low);
  }
  if (invalid < 0) return std::nullopt;
  return bytes;
}

void writeUuid(const UuidBytes& uuid, char* out) noexcept {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::size_t position = 0;
  for (std::size_t byte = 0; byte < uuid.size(); ++byte) {
    if (byte == 4 || byte == 6 || byte == 8 || byte == 10) out[position++] = '-';
    out[position++] = kDigits[uuid[byte] >> 4];
    out[position++] = kDigits[uuid[byte] & 0xF];
  }
}

std::string uuidString(const UuidBytes& uuid) {
  std::string text(36, '\0');
  writeUuid(uuid, text.data());
  return text;
}

void normaliseTagIDs(std::vector<UuidBytes>& ids) {
  std::sort(ids.begin(), ids.end());
  ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
}

}  // namespace cardiolith::bench
