#include "platform/file_io.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <mutex>
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

// Flushes the file's content to disk; a failure is a failed write.
void flush(const FileDescriptor& file, const std::filesystem::path& path) {
  if (::fsync(file.get()) != 0) throwFileError("cannot flush file to disk", path, errno);
}

// Closes a file whose writes may report a delayed error only now.
void closeWritten(FileDescriptor& file, const std::filesystem::path& path) {
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

// ".<name>.tmp-": hidden, beside the file.
std::string temporaryPrefix(const std::filesystem::path& path) {
  return "." + path.filename().string() + ".tmp-";
}

// The prefix and 16 random hex digits: unique among concurrent writers.
std::string temporaryName(const std::filesystem::path& path) {
  char suffix[17];
  std::snprintf(suffix, sizeof suffix, "%016llx", static_cast<unsigned long long>(random::next64()));
  return temporaryPrefix(path) + suffix;
}

// The file that a symbolic link at `path` finally names (a log kept on a synced drive through a link is
// written there, and the link stays), or `path` itself when it is not a link. Relative link targets are
// taken from the link's folder, as the system does.
std::filesystem::path linkTarget(const std::filesystem::path& path) {
  constexpr int maximumLinks = 40;  // the system's own limit before ELOOP
  auto current = path;
  for (int links = 0; links < maximumLinks; ++links) {
    std::error_code error;
    if (!std::filesystem::is_symlink(std::filesystem::symlink_status(current, error))) return current;
    const auto target = std::filesystem::read_symlink(current, error);
    if (error) throwFileError("cannot follow symbolic link", current, error.value());
    current = target.is_absolute() ? target : folderOf(current) / target;
  }
  throwFileError("cannot follow symbolic link", path, ELOOP);
}

// Removes the temporary files of saves that were killed before they could rename or remove them. A live
// save holds an exclusive lock on its temporary file until it is renamed, so a file that can be locked here
// belongs to nobody, unless it is so new that its writer has created it but not locked it yet: files
// changed in the last minute are left for a later save.
void removeAbandonedTemporaries(const std::filesystem::path& folder, const std::filesystem::path& path) {
  constexpr auto minimumAge = std::chrono::minutes(1);
  const std::string prefix = temporaryPrefix(path);
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
    if (!entry.path().filename().string().starts_with(prefix)) continue;
    FileDescriptor file(::open(entry.path().c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat status {};
    if (file.get() < 0 || ::fstat(file.get(), &status) != 0) continue;
    const auto changed = std::chrono::system_clock::from_time_t(status.st_mtim.tv_sec);
    if (std::chrono::system_clock::now() - changed < minimumAge) continue;
    if (::flock(file.get(), LOCK_EX | LOCK_NB) == 0) ::unlink(entry.path().c_str());
  }
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

struct ReadHook {
  std::mutex mutex;
  std::function<void(const std::filesystem::path&)> hook;
};

ReadHook& readHook() {
  static ReadHook instance;
  return instance;
}

// Runs the test hook, if any; returns `path` so that it can run in a member initialiser.
const std::filesystem::path& announceRead(const std::filesystem::path& path) {
  std::function<void(const std::filesystem::path&)> hook;
  {
    std::lock_guard lock(readHook().mutex);
    hook = readHook().hook;
  }
  if (hook) hook(path);
  return path;
}

}  // namespace

void setReadHook(std::function<void(const std::filesystem::path&)> hook) {
  std::lock_guard lock(readHook().mutex);
  readHook().hook = std::move(hook);
}

// Opening without blocking lets a FIFO be refused instead of waiting for a writer that never comes.
FileReader::FileReader(const std::filesystem::path& path)
    : path_(announceRead(path)), file_(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {
  if (file_.get() < 0) throwFileError("cannot open file for reading", path, errno);
  struct stat status {};
  if (::fstat(file_.get(), &status) != 0) throwFileError("cannot inspect file", path, errno);
  if (S_ISDIR(status.st_mode)) throwFileError("cannot read file", path, EISDIR);
  if (!S_ISREG(status.st_mode)) {
    throwFileError("refusing to read what is not a regular file (a FIFO, a device or a socket)", path,
                   EINVAL);
  }
  if (status.st_size > static_cast<off_t>(kMaximumFileSize))
    throwFileError("refusing to read a file larger than 1 GiB", path, EFBIG);
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
  FileDescriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
  if (file.get() < 0) throwFileError("cannot open file for writing", path, errno);
  writeAll(file.get(), bytes, path);
  if (file.release() != 0) throwFileError("cannot write file", path, errno);
}

void replaceWholeFileDurably(const std::filesystem::path& path, std::string_view bytes) {
  const auto target = linkTarget(path);
  const auto folder = folderOf(target);
  removeAbandonedTemporaries(folder, target);
  const auto temporary = folder / temporaryName(target);
  FileDescriptor file(::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
  if (file.get() < 0) throwFileError("cannot create temporary file", path, temporary, errno);
  RemoveUnlessKept cleanup(temporary);
  // Marks the file as in use until it is renamed (see removeAbandonedTemporaries); a new file is free.
  static_cast<void>(::flock(file.get(), LOCK_EX | LOCK_NB));

  // The new file takes the old one's permissions; should that fail, it keeps the default ones, which is
  // no reason to lose the save.
  struct stat previous {};
  if (::stat(target.c_str(), &previous) == 0 && S_ISREG(previous.st_mode)) {
    static_cast<void>(::fchmod(file.get(), previous.st_mode & 07777));
  }
  writeAll(file.get(), bytes, path);
  flush(file, path);
  if (::rename(temporary.c_str(), target.c_str()) != 0)
    throwFileError("cannot replace file", path, temporary, errno);
  cleanup.keep();
  closeWritten(file, path);
  flushFolder(folder);
}

void createFileDurably(const std::filesystem::path& path, std::string_view bytes) {
  FileDescriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
  if (file.get() < 0) throwFileError("cannot create file", path, errno);
  RemoveUnlessKept cleanup(path);
  writeAll(file.get(), bytes, path);
  flush(file, path);
  closeWritten(file, path);
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
