#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace cardiolith::tool {

// Routes the library's diagnostic log: error-level messages and worse go to standard error as
// "cardiolith: <message>", debug and info messages are dropped. Commands use it to silence a message that
// is expected (no tags file yet).
// The handler may run on the library's background threads.
class LibraryLog {
 public:
  // Installs the handler for the rest of the process.
  static void install();
  // Error messages that begin with `prefix` are not printed.
  static void mute(std::string prefix);
  // The first error message beginning with `prefix` logged since install(), if any.
  static std::optional<std::string> firstLogged(std::string_view prefix);
};

}  // namespace cardiolith::tool
