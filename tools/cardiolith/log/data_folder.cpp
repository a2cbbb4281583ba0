#include "log/data_folder.hpp"

#include <cardiolith/model/json.hpp>
#include <cardiolith/platform/durable_file.hpp>
#include <cardiolith/storage/storage_options.hpp>
#include <cstdlib>
#include <iostream>
#include <string>
#include <system_error>

#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

// "~" and "~/..." under $HOME, as the shell expands them; "~user" is left alone.
std::filesystem::path expandedHome(const std::filesystem::path& folder) {
  const std::string text = folder.string();
  const char* home = std::getenv("HOME");
  if (home == nullptr || *home == '\0' || text.empty() || text[0] != '~') return folder;
  if (text.size() == 1) return home;
  if (text[1] != '/') return folder;
  return std::filesystem::path(home) / text.substr(2);
}

StorageLocations locationsFor(const GlobalOptions& options) {
  if (options.dataDir) {
    if (options.dataDir->empty()) {
      throw ToolError(
          "--data-dir: the folder name is empty; name a folder, e.g. --data-dir ~/blood-pressure");
    }
    // Absolute, so that the log never depends on the folder the command happens to run in.
    const auto folder = std::filesystem::absolute(expandedHome(*options.dataDir));
    return StorageLocations{folder, {folder}};
  }
  auto locations = StorageLocations::planned();
  if (!locations.sharedContainer || locations.documentDirectories.empty()) {
    throw ToolError(
        "can't find a folder for the data (is $HOME set?); name one with --data-dir DIR, e.g. "
        "--data-dir ~/blood-pressure, or set $CARDIOLITH_GROUP_CONTAINER and $CARDIOLITH_DOCUMENTS_DIR");
  }
  return locations;
}

Readings loadExisting(ReadingsStore& store, ReadingsLog::Access access) {
  try {
    return store.loadExisting().get();
  } catch (const std::exception& error) {
    std::string message = "can't read the readings file " + store.localDataPath().string() + ": " +
                          fileErrorReason(error.what());
    message += access == ReadingsLog::Access::change
                   ? "\nNothing was changed: the file is left exactly as it is. Move it aside (or restore it "
                     "from a backup) before adding to the log."
                   : "\nRestore it from a backup, or move it aside to start a new log; nothing was changed.";
    throw ToolError(message);
  }
}

FolderLock lockFor(const DataFolder& folder, ReadingsLog::Access access) {
  if (access == ReadingsLog::Access::change) return folder.lockForChange();
  return FolderLock(folder.path(), FolderLock::Mode::shared);
}

}  // namespace

DataFolder::DataFolder(const GlobalOptions& options) : locations_(locationsFor(options)) {}

std::vector<std::filesystem::path> DataFolder::ownFiles() const {
  // "readings.lock" was the lock of earlier versions, which may still be running.
  return {path() / "readings", oldReadingsFile(), tagsFile(), historyFile(), path() / "readings.lock"};
}

FolderLock DataFolder::lockForChange() const {
  std::error_code error;
  if (!createPrivateFolder(path(), error))
    throw ToolError("can't create the data folder " + path().string() + ": " + error.message());
  return FolderLock(path(), FolderLock::Mode::exclusive);
}

void DataFolder::makeLibraryDefault() const {
  ::setenv("CARDIOLITH_GROUP_CONTAINER", locations_.sharedContainer->c_str(), 1);
  ::setenv("CARDIOLITH_DOCUMENTS_DIR", locations_.documentDirectories.front().c_str(), 1);
}

ReadingsLog::ReadingsLog(const DataFolder& folder, Access access)
    : lock_(lockFor(folder, access)),
      history_(folder.historyFile()),
      store_(folder.locations(), StorageOptions{.durable = true}),
      document_(loadExisting(store_, access)) {
  if (store_.keptOldFile()) {
    const auto shared = folder.path() / "readings";
    std::cerr << "cardiolith: warning: there are two readings files, " << file().string()
              << " (from an older "
              << "version) and " << shared.string() << ". This log uses the older one, so the readings in "
              << shared.string() << " are not shown.\nMerge them: move " << shared.string()
              << " aside, run any command (it moves the older file into its place), then add the other "
                 "readings with: cardiolith import FILE-MOVED-ASIDE. Or move one of the two away for good.\n";
  }
}

void ReadingsLog::save() {
  std::optional<std::string> before;
  std::string after;
  try {
    before = durable_file::readIfPresent(file());
    // What the store's save does, done here so that the undo history takes the bytes written rather than
    // read the whole file back: that was a tenth of an import of 100,000 readings.
    after = json::encode(document_);
    durable_file::replace(file(), after);
  } catch (const std::exception& error) {
    throw ToolError("couldn't save the readings to " + file().string() + ": " +
                    fileErrorReason(error.what()) +
                    "\nThe file still holds the log as it was before this command.");
  }
  history_.recordWrite(file(), before, after);
}

}  // namespace cardiolith::tool
