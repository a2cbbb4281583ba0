#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
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
// among the first `requiredCount` members, a missing one. Of a member's faults the first counts. Only the
// earliest fault so far is kept, so a reading without faults costs next to nothing.
template <std::size_t N>
class MemberFaults {
  static_assert(N <= 32, "members are marked in a 32-bit mask");

 public:
  // Calls readMember(), which reads member `index`, keeping a ValueFault it throws.
  template <class ReadMember>
  void read(std::size_t index, ReadMember&& readMember) {
    found_ |= 1u << index;
    try {
      readMember();
    } catch (const ValueFault& fault) {
      if (index < faultyMember_) {
        faultyMember_ = index;
        fault_ = fault.what();
      }
    }
  }

  // Once the object has ended: throws the first fault in member order, if any.
  void throwFirst(const JsonPath& object, const std::array<std::string_view, N>& keys,
                  std::size_t requiredCount) const {
    for (std::size_t index = 0; index < requiredCount && index < faultyMember_; ++index) {
      if ((found_ & (1u << index)) == 0) [[unlikely]]
        JsonReader::failMissing(object.member(keys[index]));
    }
    if (faultyMember_ < N) [[unlikely]]
      throw ValueFault(fault_);
  }

 private:
  std::uint32_t found_ = 0;
  std::size_t faultyMember_ = N;  // N while no value has failed
  std::string fault_;
};

}  // namespace cardiolith::json_detail
