#include "cardiolith/platform/uuid.hpp"

#include "platform/random.hpp"

namespace cardiolith {
namespace {

constexpr char kHexDigits[] = "0123456789ABCDEF";
// Offsets of the hyphens in the 36-character text form.
constexpr bool isHyphenPosition(std::size_t i) { return i == 8 || i == 13 || i == 18 || i == 23; }

// The value of each byte as a hex digit, or -1. A table: parsing sits on the document decoder's hot path.
constexpr auto kHexValues = [] {
  std::array<std::int8_t, 256> values{};
  values.fill(-1);
  for (int digit = 0; digit < 10; ++digit) values['0' + digit] = static_cast<std::int8_t>(digit);
  for (int letter = 0; letter < 6; ++letter) {
    values['a' + letter] = static_cast<std::int8_t>(10 + letter);
    values['A' + letter] = static_cast<std::int8_t>(10 + letter);
  }
  return values;
}();

int hexValue(char c) noexcept { return kHexValues[static_cast<unsigned char>(c)]; }

}  // namespace

UUID UUID::random() {
  Bytes bytes;
  detail::random::fill(bytes.data(), bytes.size());
  bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0F) | 0x40);  // version 4
  bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3F) | 0x80);  // RFC 4122 variant
  return UUID(bytes);
}

std::optional<UUID> UUID::parse(std::string_view text) noexcept {
  if (text.size() != 36) return std::nullopt;
  Bytes bytes{};
  std::size_t byte = 0;
  for (std::size_t i = 0; i < 36;) {
    if (isHyphenPosition(i)) {
      if (text[i] != '-') return std::nullopt;
      ++i;
      continue;
    }
    const int high = hexValue(text[i]);
    const int low = hexValue(text[i + 1]);
    if (high < 0 || low < 0) return std::nullopt;
    bytes[byte++] = static_cast<std::uint8_t>(high << 4 | low);
    i += 2;
  }
  return UUID(bytes);
}

void UUID::writeUuidString(char* out) const noexcept {
  std::size_t position = 0;
  for (std::size_t byte = 0; byte < bytes_.size(); ++byte) {
    if (isHyphenPosition(position)) out[position++] = '-';
    out[position++] = kHexDigits[bytes_[byte] >> 4];
    out[position++] = kHexDigits[bytes_[byte] & 0x0F];
  }
}

std::string UUID::uuidString() const {
  std::string text(36, '\0');
  writeUuidString(text.data());
  return text;
}

}  // namespace cardiolith

std::size_t std::hash<cardiolith::UUID>::operator()(const cardiolith::UUID& uuid) const noexcept {
  // The bytes are random for generated ids; fold them into one word (FNV-1a over 16 bytes).
  std::uint64_t hash = 1469598103934665603ULL;
  for (const auto byte : uuid.bytes()) {
    hash ^= byte;
    hash *= 1099511628211ULL;
  }
  return static_cast<std::size_t>(hash);
}
