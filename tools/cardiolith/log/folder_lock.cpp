#include "log/folder_lock.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

int openLockFile(const std::filesystem::path& lockFile, FolderLock::Mode mode) {
  int fd = ::open(lockFile.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
  if (fd < 0 && mode == FolderLock::Mode::shared) fd = ::open(lockFile.c_str(), O_RDONLY | O_CLOEXEC);
  return fd;
}

}  // namespace

FolderLock::FolderLock(const std::filesystem::path& lockFile, Mode mode) : fd_(openLockFile(lockFile, mode)) {
  if (fd_ < 0) {
    if (mode == Mode::shared) return;
    throw ToolError("can't open the lock file " + lockFile.string() + ": " + std::strerror(errno));
  }
  const int operation = mode == Mode::exclusive ? LOCK_EX : LOCK_SH;
  while (::flock(fd_, operation) != 0) {
    if (errno == EINTR) continue;
    const int error = errno;
    ::close(fd_);
    fd_ = -1;
    throw ToolError("can't lock " + lockFile.string() + ": " + std::strerror(error));
  }
}

FolderLock::~FolderLock() {
  // Closing the descriptor releases the lock.
  if (fd_ >= 0) ::close(fd_);
}

}  // namespace cardiolith::tool
