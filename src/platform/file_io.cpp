#include "platform/file_io.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace cardiolith::detail {
namespace {

[[noreturn]] void throwFileError(const char* what, const std::filesystem::path& path, int error) {
  throw std::filesystem::filesystem_error(what, path, std::error_code(error, std::generic_category()));
}

// Closes a descriptor on every path out of a function.
class FileDescriptor {
 public:
  explicit FileDescriptor(int fd) : fd_(fd) {}
  ~FileDescriptor() {
    if (fd_ >= 0) ::close(fd_);
  }
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  int get() const { return fd_; }
  // Closes now, so that a failing close (a delayed write error) can be reported.
  int release() { return ::close(std::exchange(fd_, -1)); }

 private:
  int fd_;
};

}  // namespace

std::string readWholeFile(const std::filesystem::path& path) {
  FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (file.get() < 0) throwFileError("cannot open file for reading", path, errno);
  struct stat status {};
  if (::fstat(file.get(), &status) != 0) throwFileError("cannot inspect file", path, errno);
  if (S_ISDIR(status.st_mode)) throwFileError("cannot read file", path, EISDIR);

  std::string bytes;
  bytes.resize(status.st_size > 0 ? static_cast<std::size_t>(status.st_size) : 4096);
  std::size_t filled = 0;
  for (;;) {
    if (filled == bytes.size()) bytes.resize(bytes.size() * 2);  // the file grew while we read it
    const ssize_t got = ::read(file.get(), bytes.data() + filled, bytes.size() - filled);
    if (got < 0) {
      if (errno == EINTR) continue;
      throwFileError("cannot read file", path, errno);
    }
    if (got == 0) break;
    filled += static_cast<std::size_t>(got);
  }
  bytes.resize(filled);
  return bytes;
}

void writeWholeFile(const std::filesystem::path& path, std::string_view bytes) {
  FileDescriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644));
  if (file.get() < 0) throwFileError("cannot open file for writing", path, errno);
  while (!bytes.empty()) {
    const ssize_t written = ::write(file.get(), bytes.data(), bytes.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      throwFileError("cannot write file", path, errno);
    }
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  if (file.release() != 0) throwFileError("cannot write file", path, errno);
}

}  // namespace cardiolith::detail
