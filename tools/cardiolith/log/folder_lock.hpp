#pragma once

#include <filesystem>

namespace cardiolith::tool {

// An advisory lock (flock) on a lock file, held for the object's lifetime. Every command that changes the
// log holds it exclusively around its load-change-save, so that two commands run at once both land;
// readers hold it shared, so they never overlap a writer's migration or save.
class FolderLock {
 public:
  enum class Mode { shared, exclusive };

  // Blocks until the lock is granted. ToolError when the lock file can't be opened for an exclusive lock;
  // a shared lock on a folder the user may not write to is skipped (there is no writer to wait for).
  FolderLock(const std::filesystem::path& lockFile, Mode mode);
  ~FolderLock();
  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;

 private:
  int fd_ = -1;
};

}  // namespace cardiolith::tool
