#include "log/data_folder.hpp"

#include <cardiolith/platform/durable_file.hpp>
#include <cardiolith/storage/storage_options.hpp>
#include <cstdlib>
#include <system_error>

#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

StorageLocations locationsFor(const GlobalOptions& options) {
  if (options.dataDir) {
    std::error_code error;
    std::filesystem::create_directories(*options.dataDir, error);
    if (error)
      throw ToolError("can't create the data folder " + options.dataDir->string() + ": " + error.message());
    return StorageLocations{*options.dataDir, {*options.dataDir}};
  }
  auto locations = StorageLocations::current();
  if (!locations.sharedContainer || locations.documentDirectories.empty()) {
    throw ToolError(
        "can't find a folder for the data (is $HOME set?); name one with --data-dir DIR or "
        "$CARDIOLITH_GROUP_CONTAINER and $CARDIOLITH_DOCUMENTS_DIR");
  }
  return locations;
}

Readings loadExisting(ReadingsStore& store, ReadingsLog::Access access) {
  try {
    return store.loadExisting().get();
  } catch (const std::exception& error) {
    std::string message =
        "can't read the readings file " + store.localDataPath().string() + ": " + error.what();
    if (access == ReadingsLog::Access::change) {
      message +=
          "\nNothing was changed: the file is left exactly as it is. Move it aside (or restore it from a "
          "backup) before adding to the log.";
    }
    throw ToolError(message);
  }
}

}  // namespace

DataFolder::DataFolder(const GlobalOptions& options) : locations_(locationsFor(options)) {}

void DataFolder::makeLibraryDefault() const {
  ::setenv("CARDIOLITH_GROUP_CONTAINER", locations_.sharedContainer->c_str(), 1);
  ::setenv("CARDIOLITH_DOCUMENTS_DIR", locations_.documentDirectories.front().c_str(), 1);
}

ReadingsLog::ReadingsLog(const DataFolder& folder, Access access)
    : lock_(folder.lockFile(),
            access == Access::change ? FolderLock::Mode::exclusive : FolderLock::Mode::shared),
      history_(folder.historyFile()),
      store_(folder.locations(), StorageOptions{.durable = true}),
      document_(loadExisting(store_, access)) {}

void ReadingsLog::save() {
  std::optional<std::string> before;
  try {
    before = durable_file::readIfPresent(file());
    store_.save(document_).get();
  } catch (const std::exception& error) {
    throw ToolError("couldn't save the readings to " + file().string() + ": " + error.what() +
                    "\nThe file still holds the log as it was before this command.");
  }
  history_.recordWrite(file(), before);
}

}  // namespace cardiolith::tool
