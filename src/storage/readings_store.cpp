#include "cardiolith/storage/readings_store.hpp"

#include <system_error>
#include <utility>

#include "cardiolith/model/json.hpp"
#include "cardiolith/platform/analytics_backend.hpp"
#include "cardiolith/platform/logger.hpp"
#include "cardiolith/platform/process_info.hpp"
#include "platform/fatal.hpp"
#include "platform/file_io.hpp"
#include "platform/serial_queue.hpp"
#include "storage/document_file.hpp"

namespace cardiolith {
namespace {

constexpr const char* fileName = "readings";

std::filesystem::path requireFolder(const std::optional<std::filesystem::path>& folder) {
  if (!folder) detail::fatalError("Can't find documents directory");
  return *folder;
}

// Moves an old installation's file from the private documents folder into the shared container, and
// returns the file the store works on from now on: the shared one, or the old one when the move failed
// (then both files stay as they were, and the failure is reported to analytics).
std::filesystem::path migrate(const std::filesystem::path& legacy, const std::filesystem::path& shared) {
  std::error_code error;
  if (!std::filesystem::exists(legacy, error)) return shared;
  try {
    detail::moveWithoutReplacing(legacy, shared);
  } catch (const std::exception& failure) {
    OstrelAnalyticsLogger::shared().loggedAssertionFailure(
        "Failed to migrate data with error: " + allInfoString(failure), __FILE__, "init()", __LINE__);
    return legacy;
  }
  Logger::standard().debug("Data migrated to shared group");
  return shared;
}

struct ActiveFile {
  std::filesystem::path path;
  bool keptOldFile = false;
};

ActiveFile activeFile(const StorageLocations& locations) {
  const auto shared = requireFolder(locations.sharedContainer) / fileName;
  if (locations.documentDirectories.empty()) detail::fatalError("Can't find documents directory");
  const auto legacy = locations.documentDirectories.front() / fileName;

  auto active = migrate(legacy, shared);
  if (ProcessInfo::hasArgument("DELETE_ALL_RECORDS")) {
    std::error_code ignored;  // nothing to remove is as good as removed
    std::filesystem::remove(active, ignored);
  }
  return {active, active == legacy && legacy != shared};
}

}  // namespace

struct ReadingsStore::Impl {
  Impl(const StorageLocations& locations, StorageOptions options) : Impl(activeFile(locations), options) {}
  Impl(ActiveFile active, StorageOptions options)
      : file(std::move(active.path), options), keptOldFile(active.keptOldFile) {}

  detail::DocumentFile file;
  bool keptOldFile;
  detail::SerialQueue queue{"readings-store"};  // last: destroyed first, after running what was submitted
};

ReadingsStore::ReadingsStore() : ReadingsStore(StorageLocations::current()) {}

ReadingsStore::ReadingsStore(StorageLocations locations, StorageOptions options)
    : impl_(std::make_unique<Impl>(locations, options)) {}

ReadingsStore::~ReadingsStore() = default;

std::future<Readings> ReadingsStore::load() {
  return impl_->queue.submit(
      [this] { return impl_->file.load<Readings>("Unable to load readings: ").value_or(Readings{}); });
}

std::future<Readings> ReadingsStore::loadExisting() {
  return impl_->queue.submit([this] { return impl_->file.readReadingsIfPresent().value_or(Readings{}); });
}

std::future<void> ReadingsStore::save(Readings readings) {
  return impl_->queue.submit(
      [this, readings = std::move(readings)] { impl_->file.write(json::encode(readings)); });
}

const std::filesystem::path& ReadingsStore::localDataPath() const { return impl_->file.path(); }

bool ReadingsStore::keptOldFile() const { return impl_->keptOldFile; }

}  // namespace cardiolith
