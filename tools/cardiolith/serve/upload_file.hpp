#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>

namespace cardiolith::tool::serve {

// A file uploaded to the server, kept on disk rather than in memory while it arrives, so that a large
// health export costs no more memory than a small one. The file is made readable by the user only and
// removed from its folder at once: it has no name anyone could open, leaves nothing behind when the server
// is killed, and is read through this process's own descriptor.
class UploadFile {
 public:
  // ToolError when the temporary folder can't hold a file.
  UploadFile();
  ~UploadFile();
  UploadFile(const UploadFile&) = delete;
  UploadFile& operator=(const UploadFile&) = delete;

  // Appends bytes; false when they can't be written (the disk is full), after which the upload is failed.
  [[nodiscard]] bool append(const char* data, std::size_t size);
  // ToolError, saying why, when an append failed.
  void finish() const;

  std::uint64_t size() const { return size_; }
  // A path that opens the file for reading (through /proc/self/fd).
  std::filesystem::path path() const;

 private:
  int descriptor_ = -1;
  std::uint64_t size_ = 0;
  int writeError_ = 0;
};

}  // namespace cardiolith::tool::serve
