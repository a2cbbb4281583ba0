#include "cardiolith/platform/string_table.hpp"

#include <unicode/locid.h>

#include <memory>
#include <mutex>

namespace cardiolith {
namespace {

struct TranslatorSlot {
  std::mutex mutex;
  std::shared_ptr<const StringTable::Translator> translator;
};

TranslatorSlot& slot() {
  static TranslatorSlot instance;
  return instance;
}

}  // namespace

std::string StringTable::localized(std::string_view key) {
  std::shared_ptr<const Translator> translator;
  {
    std::lock_guard lock(slot().mutex);
    translator = slot().translator;
  }
  if (translator) {
    if (auto translation = (*translator)(key, icu::Locale::getDefault().getName())) return *translation;
  }
  return std::string(key);
}

void StringTable::setTranslator(Translator translator) {
  auto shared = translator ? std::make_shared<const Translator>(std::move(translator)) : nullptr;
  std::lock_guard lock(slot().mutex);
  slot().translator = std::move(shared);
}

}  // namespace cardiolith
