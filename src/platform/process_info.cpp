#include "cardiolith/platform/process_info.hpp"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <optional>

#include "platform/thread_annotations.hpp"

namespace cardiolith {
namespace {

// The arguments the kernel recorded for this process: NUL-separated in /proc/self/cmdline.
std::vector<std::string> readProcessArguments() {
  std::ifstream file("/proc/self/cmdline", std::ios::binary);
  const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  std::vector<std::string> arguments;
  std::size_t start = 0;
  while (start < bytes.size()) {
    const auto end = bytes.find('\0', start);
    const auto stop = end == std::string::npos ? bytes.size() : end;
    arguments.emplace_back(bytes, start, stop - start);
    start = stop + 1;
  }
  return arguments;
}

struct ArgumentsSlot {
  detail::Mutex mutex;
  std::optional<std::vector<std::string>> overridden CARDIOLITH_GUARDED_BY(mutex);
};

// Never destroyed: analytics work drained at exit still asks for the launch arguments.
ArgumentsSlot& slot() {
  static auto* const instance = new ArgumentsSlot;
  return *instance;
}

}  // namespace

std::vector<std::string> ProcessInfo::arguments() {
  {
    auto& current = slot();
    detail::MutexLock lock(current.mutex);
    if (current.overridden) return *current.overridden;
  }
  return readProcessArguments();
}

void ProcessInfo::setArguments(std::vector<std::string> arguments) {
  auto& current = slot();
  detail::MutexLock lock(current.mutex);
  current.overridden = std::move(arguments);
}

bool ProcessInfo::hasArgument(const std::string& argument) {
  const auto all = arguments();
  return std::find(all.begin(), all.end(), argument) != all.end();
}

}  // namespace cardiolith
