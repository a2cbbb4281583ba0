#include "cardiolith/platform/analytics_backend.hpp"

#include <cxxabi.h>

#include <filesystem>
#include <system_error>
#include <typeinfo>

#include "platform/thread_annotations.hpp"

namespace cardiolith {
namespace {

// The default backend: the analytics library records nothing until the host plugs one in.
class SilentBackend final : public AnalyticsBackend {
 public:
  void logEvent(const std::string&, const std::optional<AnalyticsParameters>&) override {}
  void updateUserProperties(const std::optional<AnalyticsParameters>&) override {}
  void loggedAssertionFailure(const std::optional<std::string>&, std::string_view, std::string_view,
                              int) override {}
};

struct BackendSlot {
  detail::Mutex mutex;
  std::shared_ptr<AnalyticsBackend> backend CARDIOLITH_GUARDED_BY(mutex) = std::make_shared<SilentBackend>();
};

// Never destroyed: work that runs during exit (analytics queued before it, static destructors) still uses it.
BackendSlot& slot() {
  static auto* const instance = new BackendSlot;
  return *instance;
}

std::string typeName(const std::exception& error) {
  const char* mangled = typeid(error).name();
  int status = 0;
  std::unique_ptr<char, void (*)(void*)> demangled(abi::__cxa_demangle(mangled, nullptr, nullptr, &status),
                                                   std::free);
  return status == 0 && demangled ? demangled.get() : mangled;
}

void describe(const std::exception& error, std::string& out) {
  out += typeName(error);
  out += ": ";
  out += error.what();
  if (const auto* fileError = dynamic_cast<const std::filesystem::filesystem_error*>(&error)) {
    if (!fileError->path1().empty()) out += " [path1: " + fileError->path1().string() + "]";
    if (!fileError->path2().empty()) out += " [path2: " + fileError->path2().string() + "]";
  }
  if (const auto* systemError = dynamic_cast<const std::system_error*>(&error)) {
    out += " [" + std::string(systemError->code().category().name()) + " error " +
           std::to_string(systemError->code().value()) + "]";
  }
  try {
    std::rethrow_if_nested(error);
  } catch (const std::exception& nested) {
    out += "; caused by ";
    describe(nested, out);
  } catch (...) {
    out += "; caused by an unknown exception";
  }
}

}  // namespace

OstrelAnalyticsLogger& OstrelAnalyticsLogger::shared() {
  static OstrelAnalyticsLogger instance;
  return instance;
}

void OstrelAnalyticsLogger::setBackend(std::shared_ptr<AnalyticsBackend> backend) {
  if (!backend) backend = std::make_shared<SilentBackend>();
  auto& current = slot();
  detail::MutexLock lock(current.mutex);
  current.backend = std::move(backend);
}

std::shared_ptr<AnalyticsBackend> OstrelAnalyticsLogger::backend() const {
  auto& current = slot();
  detail::MutexLock lock(current.mutex);
  return current.backend;
}

void OstrelAnalyticsLogger::logEvent(const std::string& name,
                                     const std::optional<AnalyticsParameters>& params) {
  backend()->logEvent(name, params);
}

void OstrelAnalyticsLogger::updateUserProperties(const std::optional<AnalyticsParameters>& properties) {
  backend()->updateUserProperties(properties);
}

void OstrelAnalyticsLogger::loggedAssertionFailure(const std::optional<std::string>& message,
                                                   std::string_view file, std::string_view function,
                                                   int line) {
  backend()->loggedAssertionFailure(message, file, function, line);
}

std::string allInfoString(const std::exception& error) {
  std::string out;
  describe(error, out);
  return out;
}

std::string localizedDescription(const std::exception& error) { return error.what(); }

}  // namespace cardiolith
