#pragma once

#include <cardiolith/model/readings.hpp>
#include <cardiolith/platform/storage_locations.hpp>
#include <cardiolith/storage/readings_store.hpp>
#include <filesystem>
#include <vector>

#include "global_options.hpp"
#include "log/change_history.hpp"
#include "log/folder_lock.hpp"

namespace cardiolith::tool {

// Where this run keeps its data: the --data-dir folder for both the shared container and the documents
// folder, or the platform's default places. Finding it creates nothing; a command that changes the log
// creates it when it takes the lock for the change.
class DataFolder {
 public:
  // ToolError when --data-dir is empty or the default places can't be found. A leading "~" or "~/" of
  // --data-dir stands for $HOME, as in the shell (an option written "--data-dir=~/x" gets no expansion).
  explicit DataFolder(const GlobalOptions& options);

  const StorageLocations& locations() const { return locations_; }
  // The shared container, which holds the readings and tags files.
  const std::filesystem::path& path() const { return *locations_.sharedContainer; }
  std::filesystem::path tagsFile() const { return path() / "tags"; }
  // What cardiolith undo takes back: the tool's recent changes to the readings and tags files.
  std::filesystem::path historyFile() const { return path() / "undo-history"; }
  // The readings file of an older installation in the documents folder, which the log moves into path().
  std::filesystem::path oldReadingsFile() const {
    return locations_.documentDirectories.front() / "readings";
  }

  // Every file that belongs to the log, whether it exists yet or not: no output may replace one of them.
  std::vector<std::filesystem::path> ownFiles() const;

  // Creates the folder (readable by the user only) and locks it for a change. ToolError when either fails.
  FolderLock lockForChange() const;

  // Points the library's own default places at this folder, for library code that opens its stores
  // itself (the sample generator's tag list).
  void makeLibraryDefault() const;

 private:
  StorageLocations locations_;
};

// The readings document of a data folder, loaded under the folder lock, which is held until destruction.
// An existing file that can't be read is an error, never an empty log, so nothing can replace it. Reading
// creates nothing: with no folder, the log is empty.
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
