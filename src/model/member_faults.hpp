#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "cardiolith/model/json.hpp"
#include "model/json_path.hpp"
#include "model/json_reader.hpp"

namespace cardiolith::json_detail {

// A fault of one value (wrong type, out of range, not a UUID, a required member missing) that leaves the
// parser where it can go on reading. Text that is not JSON is a plain DecodingError and ends the read at
// once.
struct ValueFault : DecodingError {
  using DecodingError::DecodingError;
};

// The members of one object as they are read, in whatever order the input lists them, so that the fault
// reported is the first one in the order the members are checked: the first member with a faulty value or,
// among the first `requiredCount` members, a missing one. Only the first fault of a member is kept.
template <std::size_t N>
class MemberFaults {
 public:
  // Calls readMember(), which reads member `index`, keeping a ValueFault it throws.
  template <class ReadMember>
  void read(std::size_t index, ReadMember&& readMember) {
    found_[index] = true;
    try {
      readMember();
    } catch (const ValueFault& fault) {
      if (!faults_[index]) faults_[index] = fault.what();
    }
  }

  // Once the object has ended: throws the first fault in member order, if any.
  void throwFirst(const JsonPath& object, const std::array<std::string_view, N>& keys,
                  std::size_t requiredCount) const {
    for (std::size_t index = 0; index < N; ++index) {
      if (faults_[index]) [[unlikely]]
        throw ValueFault(*faults_[index]);
      if (index < requiredCount && !found_[index]) [[unlikely]]
        JsonReader::failMissing(object.member(keys[index]));
    }
  }

 private:
  std::array<bool, N> found_{};
  std::array<std::optional<std::string>, N> faults_;
};

}  // namespace cardiolith::json_detail
