#include "log/folder_lock.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

bool namesSameFile(const std::filesystem::path& path, int fd) {
  struct stat named {
  }, held{};
  return ::stat(path.c_str(), &named) == 0 && ::fstat(fd, &held) == 0 && named.st_dev == held.st_dev &&
         named.st_ino == held.st_ino;
}

}  // namespace

FolderLock::FolderLock(const std::filesystem::path& folder, Mode mode) {
  const int operation = mode == Mode::exclusive ? LOCK_EX : LOCK_SH;
  for (;;) {
    fd_ = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd_ < 0) {
      if (mode == Mode::shared) return;
      throw ToolError("can't open the data folder " + folder.string() +
                      " to lock it: " + std::strerror(errno));
    }
    while (::flock(fd_, operation) != 0) {
      if (errno == EINTR) continue;
      const int error = errno;
      ::close(fd_);
      fd_ = -1;
      throw ToolError("can't lock the data folder " + folder.string() + ": " + std::strerror(error));
    }
    if (namesSameFile(folder, fd_)) return;
    ::close(fd_);  // renamed or replaced while we waited: lock what the path names now
  }
}

FolderLock::~FolderLock() {
  // Closing the descriptor releases the lock.
  if (fd_ >= 0) ::close(fd_);
}

}  // namespace cardiolith::tool
