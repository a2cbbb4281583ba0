#include "cardiolith/platform/string_table.hpp"

#include <unicode/locid.h>

#include <memory>

#include "platform/thread_annotations.hpp"

namespace cardiolith {
namespace {

struct TranslatorSlot {
  detail::Mutex mutex;
  std::shared_ptr<const StringTable::Translator> translator CARDIOLITH_GUARDED_BY(mutex);
};

TranslatorSlot& slot() {
  static TranslatorSlot instance;
  return instance;
}

}  // namespace

std::string StringTable::localized(std::string_view key) {
  std::shared_ptr<const Translator> translator;
  {
    auto& current = slot();
    detail::MutexLock lock(current.mutex);
    translator = current.translator;
  }
  if (translator) {
    if (auto translation = (*translator)(key, icu::Locale::getDefault().getName())) return *translation;
  }
  return std::string(key);
}

void StringTable::setTranslator(Translator translator) {
  auto shared = translator ? std::make_shared<const Translator>(std::move(translator)) : nullptr;
  auto& current = slot();
  detail::MutexLock lock(current.mutex);
  current.translator = std::move(shared);
}

}  // namespace cardiolith
