#pragma once

#include <filesystem>

namespace cardiolith::tool {

// An advisory lock (flock) on the data folder itself, held for the object's lifetime. Every command that
// changes the log holds it exclusively around its load-change-save, so that two commands run at once both
// land; readers hold it shared, so they never overlap a writer's migration or save. The folder is locked
// rather than a lock file in it: a lock file can be deleted while it is held, and the next command would
// then lock a new file and overlap the holder; a folder that holds the log can't be deleted. After locking,
// the path must still name the locked folder (it may have been renamed meanwhile), else it is locked again.
class FolderLock {
 public:
  enum class Mode { shared, exclusive };

  // Blocks until the lock is granted. ToolError when the folder can't be opened for an exclusive lock. A
  // shared lock is skipped when there is no folder (nothing to read, and a reader creates nothing) or the
  // user may not open it (there is no writer to wait for).
  FolderLock(const std::filesystem::path& folder, Mode mode);
  ~FolderLock();
  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;

 private:
  int fd_ = -1;
};

}  // namespace cardiolith::tool
