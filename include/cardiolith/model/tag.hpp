#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "cardiolith/export.hpp"
#include "cardiolith/platform/uuid.hpp"

namespace cardiolith {

// A user-defined label with a colour ("007aff", six hex digits, not parsed by the library).
struct Tag {
  UUID id;
  std::string title;
  std::string colorHex;
};

// Equal when id, title and colorHex are equal; texts under canonical equivalence.
CARDIOLITH_EXPORT bool operator==(const Tag& a, const Tag& b);

}  // namespace cardiolith

template <>
struct CARDIOLITH_EXPORT std::hash<cardiolith::Tag> {
  std::size_t operator()(const cardiolith::Tag& tag) const;
};
