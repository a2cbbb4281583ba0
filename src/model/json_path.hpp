#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace cardiolith::json_detail {

// Where a value sits in a document: a chain of frames on the caller's stack, from the value up to the
// root. Cheap enough to make for every value read or written; turned into text ("readings[3].pulse") only
// when an error names it. A path refers to its parent, so the parent must outlive it: keep each level in
// a named variable and never chain from a temporary.
class JsonPath {
 public:
  constexpr JsonPath() = default;  // the document itself

  constexpr JsonPath member(std::string_view key) const { return JsonPath(this, key, 0); }
  constexpr JsonPath element(std::size_t index) const { return JsonPath(this, {}, index); }

  // "readings[3].pulse", "[2].title", or "document" for the root.
  std::string toString() const;

 private:
  constexpr JsonPath(const JsonPath* parent, std::string_view key, std::size_t index)
      : parent_(parent), key_(key), index_(index) {}

  bool isRoot() const { return parent_ == nullptr; }
  void append(std::string& out) const;

  const JsonPath* parent_ = nullptr;
  std::string_view key_;  // empty for an array element; member keys are never empty here
  std::size_t index_ = 0;
};

}  // namespace cardiolith::json_detail
