#pragma once

#include <string>

namespace cardiolith::testing {

// The message of the `Error` that `action` throws, or a text saying that it threw none.
template <class Error, class Action>
std::string messageOf(Action&& action) {
  try {
    action();
  } catch (const Error& error) {
    return error.what();
  }
  return "no error";
}

}  // namespace cardiolith::testing
