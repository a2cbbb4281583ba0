#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "cardiolith/export.hpp"

namespace cardiolith {

// A 128-bit universally unique identifier, held as its 16 bytes in network order.
class CARDIOLITH_EXPORT UUID {
 public:
  using Bytes = std::array<std::uint8_t, 16>;

  constexpr UUID() = default;  // the nil UUID, all zero
  constexpr explicit UUID(const Bytes& bytes) : bytes_(bytes) {}

  // A version-4 UUID (RFC 4122 variant) from the system random source.
  [[nodiscard]] static UUID random();
  // Accepts exactly the 36-character 8-4-4-4-12 form with hex digits of either case.
  [[nodiscard]] static std::optional<UUID> parse(std::string_view text) noexcept;

  // The canonical 36-character text with upper-case digits.
  [[nodiscard]] std::string uuidString() const;
  // Writes the canonical text into out[0..36); for writers that avoid allocating.
  void writeUuidString(char* out) const noexcept;

  constexpr const Bytes& bytes() const noexcept { return bytes_; }

  friend constexpr bool operator==(const UUID&, const UUID&) = default;
  friend constexpr auto operator<=>(const UUID&, const UUID&) = default;

 private:
  Bytes bytes_{};
};

}  // namespace cardiolith

template <>
struct CARDIOLITH_EXPORT std::hash<cardiolith::UUID> {
  std::size_t operator()(const cardiolith::UUID& uuid) const noexcept;
};
