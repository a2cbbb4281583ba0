#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace cardiolith {

// The host app's string table. The library asks it for the translation of an English key (for example a
// default tag's title) in the current locale; with no translator, or when the translator has nothing,
// the key itself is the text.
struct StringTable {
  // Given the key and the ICU id of the current locale ("de_DE"), the translation or nothing.
  using Translator = std::function<std::optional<std::string>(std::string_view key, std::string_view localeID)>;

  static std::string localized(std::string_view key);
  // Installs the process-wide translator; nullptr removes it.
  static void setTranslator(Translator translator);
};

}  // namespace cardiolith
