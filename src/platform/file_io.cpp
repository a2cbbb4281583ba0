#include "platform/file_io.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <string>
#include <system_error>
#include <utility>

#include "platform/random.hpp"
#include "platform/write_faults.hpp"

namespace cardiolith::detail {
namespace {

[[noreturn]] void throwFileError(const char* what, const std::filesystem::path& path, int error) {
  throw std::filesystem::filesystem_error(what, path, std::error_code(error, std::generic_category()));
}

[[noreturn]] void throwFileError(const char* what, const std::filesystem::path& path,
                                 const std::filesystem::path& other, int error) {
  throw std::filesystem::filesystem_error(what, path, other, std::error_code(error, std::generic_category()));
}

// Writes every byte, through the seam that lets tests fill the disk.
void writeAll(int fd, std::string_view bytes, const std::filesystem::path& path) {
  while (!bytes.empty()) {
    const ssize_t written = write_faults::writeSome(fd, bytes.data(), bytes.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      throwFileError("cannot write file", path, errno);
    }
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

// Flushes the file's content to disk, then closes it; a failure of either is a failed write.
void closeFlushed(FileDescriptor& file, const std::filesystem::path& path) {
  if (::fsync(file.get()) != 0) throwFileError("cannot flush file to disk", path, errno);
  if (file.release() != 0) throwFileError("cannot write file", path, errno);
}

// Makes the folder's entries (a new or renamed file) durable. File systems that can't sync a folder
// (EINVAL) have nothing to flush.
void flushFolder(const std::filesystem::path& folder) {
  FileDescriptor handle(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (handle.get() < 0) throwFileError("cannot open folder to flush it", folder, errno);
  if (::fsync(handle.get()) != 0 && errno != EINVAL)
    throwFileError("cannot flush folder to disk", folder, errno);
}

std::filesystem::path folderOf(const std::filesystem::path& path) {
  auto folder = path.parent_path();
  return folder.empty() ? std::filesystem::path(".") : folder;
}

// ".<name>.tmp-<16 random hex digits>": hidden, beside the file, unique among concurrent writers.
std::string temporaryName(const std::filesystem::path& path) {
  char suffix[17];
  std::snprintf(suffix, sizeof suffix, "%016llx", static_cast<unsigned long long>(random::next64()));
  return "." + path.filename().string() + ".tmp-" + suffix;
}

// Removes a file on every path out of a function, unless told to keep it.
class RemoveUnlessKept {
 public:
  explicit RemoveUnlessKept(std::filesystem::path path) : path_(std::move(path)) {}
  ~RemoveUnlessKept() {
    if (!kept_) ::unlink(path_.c_str());
  }
  RemoveUnlessKept(const RemoveUnlessKept&) = delete;
  RemoveUnlessKept& operator=(const RemoveUnlessKept&) = delete;
  void keep() { kept_ = true; }

 private:
  std::filesystem::path path_;
  bool kept_ = false;
};

}  // namespace

FileReader::FileReader(const std::filesystem::path& path)
    : path_(path), file_(::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
  if (file_.get() < 0) throwFileError("cannot open file for reading", path, errno);
  struct stat status {};
  if (::fstat(file_.get(), &status) != 0) throwFileError("cannot inspect file", path, errno);
  if (S_ISDIR(status.st_mode)) throwFileError("cannot read file", path, EISDIR);
  size_ = static_cast<std::size_t>(std::max<off_t>(status.st_size, 0));
}

std::size_t FileReader::read(char* into, std::size_t capacity) {
  for (;;) {
    const ssize_t got = ::read(file_.get(), into, capacity);
    if (got >= 0) return static_cast<std::size_t>(got);
    if (errno != EINTR) throwFileError("cannot read file", path_, errno);
  }
}

std::string readWholeFile(const std::filesystem::path& path, std::size_t spareCapacity) {
  FileReader file(path);
  std::string bytes;
  // One byte more than the file's size, so that the read which finds the end does not have to grow (and
  // zero-fill) a buffer as large as the file again; only a file that grows while we read it does that.
  const std::size_t expected = file.size() + 1;
  bytes.reserve(expected + spareCapacity);
  bytes.resize(expected);
  std::size_t filled = 0;
  for (;;) {
    if (filled == bytes.size()) bytes.resize(bytes.size() * 2);
    const std::size_t got = file.read(bytes.data() + filled, bytes.size() - filled);
    if (got == 0) break;
    filled += got;
  }
  bytes.resize(filled);
  if (bytes.capacity() - bytes.size() < spareCapacity) bytes.reserve(bytes.size() + spareCapacity);
  return bytes;
}

void writeWholeFile(const std::filesystem::path& path, std::string_view bytes) {
  FileDescriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644));
  if (file.get() < 0) throwFileError("cannot open file for writing", path, errno);
  writeAll(file.get(), bytes, path);
  if (file.release() != 0) throwFileError("cannot write file", path, errno);
}

void replaceWholeFileDurably(const std::filesystem::path& path, std::string_view bytes) {
  const auto folder = folderOf(path);
  const auto temporary = folder / temporaryName(path);
  FileDescriptor file(::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644));
  if (file.get() < 0) throwFileError("cannot create temporary file", path, temporary, errno);
  RemoveUnlessKept cleanup(temporary);

  // The new file takes the old one's permissions; should that fail, it keeps the default ones, which is
  // no reason to lose the save.
  struct stat previous {};
  if (::stat(path.c_str(), &previous) == 0 && S_ISREG(previous.st_mode)) {
    static_cast<void>(::fchmod(file.get(), previous.st_mode & 07777));
  }
  writeAll(file.get(), bytes, path);
  closeFlushed(file, path);
  if (::rename(temporary.c_str(), path.c_str()) != 0)
    throwFileError("cannot replace file", path, temporary, errno);
  cleanup.keep();
  flushFolder(folder);
}

void createFileDurably(const std::filesystem::path& path, std::string_view bytes) {
  FileDescriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644));
  if (file.get() < 0) throwFileError("cannot create file", path, errno);
  RemoveUnlessKept cleanup(path);
  writeAll(file.get(), bytes, path);
  closeFlushed(file, path);
  cleanup.keep();
  flushFolder(folderOf(path));
}

void moveWithoutReplacing(const std::filesystem::path& from, const std::filesystem::path& to) {
  if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return;
  if (errno != EINVAL && errno != ENOSYS) throwFileError("cannot move file", from, to, errno);
  // The file system can't rename without replacing. A hard link fails when the new name is taken; once it
  // exists, the old name can go.
  if (::link(from.c_str(), to.c_str()) != 0) throwFileError("cannot move file", from, to, errno);
  if (::unlink(from.c_str()) != 0) {
    const int error = errno;
    ::unlink(to.c_str());
    throwFileError("cannot move file", from, to, error);
  }
}

}  // namespace cardiolith::detail
