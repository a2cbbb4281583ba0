#pragma once

#include <cardiolith/model/readings.hpp>
#include <cardiolith/platform/storage_locations.hpp>
#include <cardiolith/storage/readings_store.hpp>
#include <filesystem>

#include "global_options.hpp"
#include "log/change_history.hpp"
#include "log/folder_lock.hpp"

namespace cardiolith::tool {

// Where this run keeps its data: the --data-dir folder for both the shared container and the documents
// folder, or the platform's default places.
class DataFolder {
 public:
  // ToolError when --data-dir can't be created or the default places can't be found.
  explicit DataFolder(const GlobalOptions& options);

  const StorageLocations& locations() const { return locations_; }
  // The lock that serialises changes, "readings.lock" in the shared container beside the readings file.
  std::filesystem::path lockFile() const { return *locations_.sharedContainer / "readings.lock"; }
  std::filesystem::path tagsFile() const { return *locations_.sharedContainer / "tags"; }
  // What cardiolith undo takes back: the tool's recent changes to the readings and tags files.
  std::filesystem::path historyFile() const { return *locations_.sharedContainer / "undo-history"; }

  // Points the library's own default places at this folder, for library code that opens its stores
  // itself (the sample generator's tag list).
  void makeLibraryDefault() const;

 private:
  StorageLocations locations_;
};

// The readings document of a data folder, loaded under the folder lock, which is held until destruction.
// An existing file that can't be read is an error, never an empty log, so nothing can replace it.
class ReadingsLog {
 public:
  enum class Access { read, change };

  ReadingsLog(const DataFolder& folder, Access access);

  ReadingList& readings() { return document_.readings; }
  const std::filesystem::path& file() const { return store_.localDataPath(); }

  // Writes the document durably and records the change in the undo history; for Access::change only.
  // ToolError when it fails; the file then still holds the log as it was.
  void save();

 private:
  FolderLock lock_;
  ChangeHistory history_;
  ReadingsStore store_;
  Readings document_;
};

}  // namespace cardiolith::tool
