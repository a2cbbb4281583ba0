#include "plain_reading.hpp"

#include <algorithm>
#include <string_view>

namespace cardiolith::bench {
namespace {

constexpr std::array<std::size_t, 4> kHyphenPositions{8, 13, 18, 23};

constexpr int hexValue(char c) noexcept {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

}  // namespace

std::optional<UuidBytes> parseUuid(std::string_view text) noexcept {
  if (text.size() != 36) return std::nullopt;
  for (std::size_t position : kHyphenPositions) {
    if (text[position] != '-') return std::nullopt;
  }
  UuidBytes bytes{};
  std::size_t byte = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (i == 8 || i == 13 || i == 18 || i == 23) continue;
    const int high = hexValue(text[i]);
    const int low = hexValue(text[i + 1]);
    if (high < 0 || low < 0) return std::nullopt;
    bytes[byte++] = static_cast<std::uint8_t>(high << 4 | low);
    ++i;
  }
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
