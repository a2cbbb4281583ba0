#include "log/output_file.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <system_error>

#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

namespace fs = std::filesystem;

// The file a path finally names: links followed, "." and ".." resolved; the last part may not exist yet.
fs::path resolved(const fs::path& path) {
  std::error_code error;
  auto result = fs::weakly_canonical(fs::absolute(path, error), error);
  return error ? fs::absolute(path) : result;
}

fs::path folderOf(const fs::path& path) {
  auto folder = path.parent_path();
  return folder.empty() ? fs::path(".") : folder;
}

// The same file, or the same name in the same folder (which a bind mount or a link may show under
// another path), whether or not the file exists yet.
bool sameFile(const fs::path& a, const fs::path& b) {
  std::error_code error;
  if (a == b || fs::equivalent(a, b, error)) return true;
  return a.filename() == b.filename() && fs::equivalent(folderOf(a), folderOf(b), error);
}

std::string reason(int error, const fs::path& path) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      return "there is no folder " + folderOf(path).string();
    case EISDIR:
      return path.string() + " is a folder; name a file in it";
    case EACCES:
    case EPERM:
      return "permission denied";
    case ENOSPC:
    case EDQUOT:
      return "the disk is full";
    case EROFS:
      return "the file system is read-only";
    default:
      return std::strerror(error);
  }
}

[[noreturn]] void fail(const fs::path& path, int error) {
  throw ToolError("couldn't write " + path.string() + ": " + reason(error, path) +
                  (error == ENOSPC || error == EDQUOT ? "; the previous file, if any, is unchanged" : ""));
}

// Removes the temporary file unless it was renamed into place.
class TemporaryFile {
 public:
  explicit TemporaryFile(std::string name) : name_(std::move(name)), fd_(::mkstemp(name_.data())) {}
  ~TemporaryFile() {
    if (fd_ >= 0) ::close(fd_);
    if (!renamed_) ::unlink(name_.c_str());
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  int fd() const { return fd_; }
  // Flushes and closes the file, then renames it to `path`; returns 0 or the errno of what failed.
  int commit(const fs::path& path) {
    if (::fsync(fd_) != 0) return errno;
    const int closed = ::close(fd_);
    fd_ = -1;
    if (closed != 0) return errno;
    if (::rename(name_.c_str(), path.c_str()) != 0) return errno;
    renamed_ = true;
    return 0;
  }

 private:
  std::string name_;
  int fd_;
  bool renamed_ = false;
};

int writeAll(int fd, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = ::write(fd, text.data(), text.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      return errno;
    }
    text.remove_prefix(static_cast<std::size_t>(written));
  }
  return 0;
}

}  // namespace

void writeOutputFile(const fs::path& path, std::string_view text, const std::vector<fs::path>& ownFiles) {
  if (path.empty()) throw ToolError("--out: the file name is empty; name a file, e.g. --out ~/readings.csv");
  const fs::path target = resolved(path);
  for (const auto& ownFile : ownFiles) {
    if (sameFile(target, resolved(ownFile)) || sameFile(path, ownFile)) {
      throw ToolError("won't write over " + ownFile.string() +
                      ", which belongs to the log; choose another --out, e.g. --out ~/readings.csv");
    }
  }
  std::error_code error;
  if (fs::is_directory(target, error)) fail(path, EISDIR);
  if (!fs::is_directory(folderOf(target), error)) fail(target, ENOENT);

  TemporaryFile temporary(folderOf(target) / ("." + target.filename().string() + ".tmp-XXXXXX"));
  if (temporary.fd() < 0) fail(path, errno);
  // A file that is replaced keeps its permissions; a new one gets the usual ones (the temporary file's
  // are the owner's only).
  struct stat previous {};
  if (::stat(target.c_str(), &previous) == 0) {
    static_cast<void>(::fchmod(temporary.fd(), previous.st_mode & 07777));
  } else {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    static_cast<void>(::fchmod(temporary.fd(), 0666 & ~mask));
  }
  if (const int failure = writeAll(temporary.fd(), text)) fail(path, failure);
  if (const int failure = temporary.commit(target)) fail(path, failure);
}

}  // namespace cardiolith::tool
