#pragma once

#include <unistd.h>

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace cardiolith::detail {

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

// The largest file that is read: a log's documents are far smaller, and anything larger is no such document.
inline constexpr std::size_t kMaximumFileSize = std::size_t{1} << 30;

// Reads a regular file from its start, a piece at a time. std::filesystem::filesystem_error, naming the
// path, when it can't be opened or read (a missing file fails with no_such_file_or_directory), is not a
// regular file (a FIFO or a device, also through a link: refused before anything is read, without
// waiting for a FIFO's writer) or is larger than kMaximumFileSize (file_too_large).
class FileReader {
 public:
  explicit FileReader(const std::filesystem::path& path);

  // The file's size when it was opened.
  std::size_t size() const { return size_; }
  // Reads the next bytes into `into`, at most `capacity`; 0 at the end.
  std::size_t read(char* into, std::size_t capacity);

 private:
  std::filesystem::path path_;
  FileDescriptor file_;
  std::size_t size_ = 0;
};

// A seam for tests that need a read to wait: `hook` runs at the start of every FileReader construction,
// on the reading thread, with the path. Process-wide; an empty function removes it.
void setReadHook(std::function<void(const std::filesystem::path&)> hook);

// The whole content of a file. std::filesystem::filesystem_error, naming the path, when it can't be read.
// `spareCapacity` leaves that many bytes of capacity after the content (for readers that look past the end).
std::string readWholeFile(const std::filesystem::path& path, std::size_t spareCapacity = 0);

// Writes the whole file in place, creating it (readable by its owner only) or truncating it.
// filesystem_error when it fails.
void writeWholeFile(const std::filesystem::path& path, std::string_view bytes);

// Replaces the file's content so that a crash at any moment leaves either the old or the new content:
// the bytes go to a new temporary file in the same folder, which is flushed to disk and renamed over
// `path` (keeping the old file's permissions; a new file is readable by its owner only), and then the
// folder itself is flushed. On failure the temporary file is removed and `path` is left as it was;
// temporary files that killed saves left behind (unlocked and a minute old) are removed first. When `path` is
// a symbolic link, the file it names is replaced and the link stays. filesystem_error naming `path` when it
// fails.
void replaceWholeFileDurably(const std::filesystem::path& path, std::string_view bytes);

// Creates a new file (readable by its owner only) holding the bytes, flushed to disk together with its folder
// entry. Fails with EEXIST when anything is at `path` already; a failed write removes the partial file.
// filesystem_error.
void createFileDurably(const std::filesystem::path& path, std::string_view bytes);

// Renames `from` to `to` without ever replacing: fails with EEXIST when anything is at `to` already, and
// then changes nothing. filesystem_error naming both paths.
void moveWithoutReplacing(const std::filesystem::path& from, const std::filesystem::path& to);

}  // namespace cardiolith::detail
