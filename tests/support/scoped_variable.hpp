#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace cardiolith::testing {

// Sets (or, given nothing, clears) one environment variable for the life of the object and restores it
// afterwards.
class ScopedVariable {
 public:
  ScopedVariable(const char* name, const std::optional<std::string>& value) : name_(name) {
    if (const char* old = std::getenv(name)) previous_ = old;
    set(value);
  }
  ~ScopedVariable() { set(previous_); }
  ScopedVariable(const ScopedVariable&) = delete;
  ScopedVariable& operator=(const ScopedVariable&) = delete;

 private:
  void set(const std::optional<std::string>& value) {
    value ? ::setenv(name_, value->c_str(), 1) : ::unsetenv(name_);
  }

  const char* name_;
  std::optional<std::string> previous_;
};

}  // namespace cardiolith::testing
