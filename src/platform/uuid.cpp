#include "cardiolith/platform/uuid.hpp"

#include <cstring>

#include "platform/random.hpp"

namespace cardiolith {
namespace {

constexpr char kHexDigits[] = "0123456789ABCDEF";
// Where each byte's two digits, and the hyphens, sit in the 36-character text form.
constexpr std::array<std::size_t, 16> kDigitPositions{0,  2,  4,  6,  9,  11, 14, 16,
                                                      19, 21, 24, 26, 28, 30, 32, 34};
constexpr std::array<std::size_t, 4> kHyphenPositions{8, 13, 18, 23};

// The two digits of every byte value, so that writing ids, on the document encoder's hot path, is one
// copy per byte.
constexpr auto kDigitPairs = [] {
  std::array<char, 512> pairs{};
  for (std::size_t value = 0; value < 256; ++value) {
    pairs[2 * value] = kHexDigits[value >> 4];
    pairs[2 * value + 1] = kHexDigits[value & 0x0F];
  }
  return pairs;
}();

// The value of each byte as a hex digit, or -1. A table: parsing sits on the document decoder's hot path.
constexpr auto kHexValues = [] {
  std::array<std::int8_t, 256> values{};
  values.fill(-1);
  for (std::size_t digit = 0; digit < 10; ++digit) values['0' + digit] = static_cast<std::int8_t>(digit);
  for (std::size_t letter = 0; letter < 6; ++letter) {
    values['a' + letter] = static_cast<std::int8_t>(10 + letter);
    values['A' + letter] = static_cast<std::int8_t>(10 + letter);
  }
  return values;
}();

int hexValue(char c) noexcept { return kHexValues[static_cast<unsigned char>(c)]; }

}  // namespace

UUID UUID::random() {
  // Two buffered draws rather than a system call per id: imports make one id per new reading.
  const std::uint64_t halves[2] = {detail::random::next64(), detail::random::next64()};
  Bytes bytes;
  static_assert(sizeof halves == std::tuple_size_v<Bytes>);
  std::memcpy(bytes.data(), halves, sizeof halves);
  bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0F) | 0x40);  // version 4
  bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3F) | 0x80);  // RFC 4122 variant
  return UUID(bytes);
}

std::optional<UUID> UUID::parse(std::string_view text) noexcept {
  if (text.size() != 36) return std::nullopt;
  for (const std::size_t position : kHyphenPositions) {
    if (text[position] != '-') return std::nullopt;
  }
  Bytes bytes{};
  for (std::size_t byte = 0; byte < bytes.size(); ++byte) {
    const int high = hexValue(text[kDigitPositions[byte]]);
    const int low = hexValue(text[kDigitPositions[byte] + 1]);
    if (high < 0 || low < 0) return std::nullopt;
    bytes[byte] = static_cast<std::uint8_t>(high << 4 | low);
  }
  return UUID(bytes);
}

void UUID::writeUuidString(char* out) const noexcept {
  for (std::size_t byte = 0; byte < bytes_.size(); ++byte) {
    std::memcpy(out + kDigitPositions[byte], &kDigitPairs[2 * std::size_t{bytes_[byte]}], 2);
  }
  for (const std::size_t position : kHyphenPositions) out[position] = '-';
}

std::string UUID::uuidString() const {
  std::string text(36, '\0');
  writeUuidString(text.data());
  return text;
}

}  // namespace cardiolith

std::size_t std::hash<cardiolith::UUID>::operator()(const cardiolith::UUID& uuid) const noexcept {
  // The bytes are random for generated ids; fold them into one word (FNV-1a over 16 bytes).
  std::uint64_t folded = 1469598103934665603ULL;
  for (const auto byte : uuid.bytes()) {
    folded ^= byte;
    folded *= 1099511628211ULL;
  }
  return static_cast<std::size_t>(folded);
}
