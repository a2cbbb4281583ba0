#include "cardiolith/model/tag.hpp"

#include "cardiolith/platform/text.hpp"

namespace cardiolith {
namespace {

// Mixes `value` into `seed` so that the order in which fields are fed changes the result.
std::size_t combineHash(std::size_t seed, std::size_t value) noexcept {
  return seed ^ (value + 0x9e3779b97f4a7c15ULL + (seed << 6) + (seed >> 2));
}

}  // namespace

bool operator==(const Tag& a, const Tag& b) {
  return a.id == b.id && text::canonicallyEqual(a.title, b.title) &&
         text::canonicallyEqual(a.colorHex, b.colorHex);
}

}  // namespace cardiolith

std::size_t std::hash<cardiolith::Tag>::operator()(const cardiolith::Tag& tag) const {
  using namespace cardiolith;
  std::size_t seed = std::hash<UUID>{}(tag.id);
  seed = combineHash(seed, text::canonicalHash(tag.title));
  return combineHash(seed, text::canonicalHash(tag.colorHex));
}
