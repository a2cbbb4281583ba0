#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "cardiolith/export.hpp"

namespace cardiolith {

// The host app's string table. The library asks it for the translation of an English key (for example a
// default tag's title) in the current locale; with no translator, or when the translator has nothing,
// the key itself is the text.
struct CARDIOLITH_EXPORT StringTable {
  // Given the key and the ICU id of the current locale ("de_DE"), the translation or nothing.
  using Translator =
      std::function<std::optional<std::string>(std::string_view key, std::string_view localeID)>;

  [[nodiscard]] static std::string localized(std::string_view key);
  // Installs the process-wide translator; nullptr removes it. May be called from any thread.
  //
  // Threads: the translator runs on the thread that asks for a text, usually a tags manager's background
  // thread making the default tags, possibly on several threads at once: it must be thread-safe. A lookup
  // takes the translator current at that moment and calls it outside any lock, so the old translator may
  // still be running for a lookup that started before setTranslator returned (it is kept alive until then).
  static void setTranslator(Translator translator);
};

}  // namespace cardiolith
