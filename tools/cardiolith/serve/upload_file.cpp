#include "serve/upload_file.hpp"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

#include "tool_error.hpp"

namespace cardiolith::tool::serve {

UploadFile::UploadFile() {
  std::string name = (std::filesystem::temp_directory_path() / "cardiolith-upload-XXXXXX").string();
  descriptor_ = ::mkstemp(name.data());  // mode 0600
  if (descriptor_ < 0) {
    throw ToolError("can't store the uploaded file in " + std::filesystem::temp_directory_path().string() +
                    ": " + std::strerror(errno));
  }
  ::unlink(name.c_str());
}

UploadFile::~UploadFile() { ::close(descriptor_); }

bool UploadFile::append(const char* data, std::size_t size) {
  while (size > 0 && writeError_ == 0) {
    const ssize_t written = ::write(descriptor_, data, size);
    if (written < 0) {
      if (errno != EINTR) writeError_ = errno;
      continue;
    }
    const auto count = static_cast<std::size_t>(written);
    data += count;
    size -= count;
    size_ += count;
  }
  return writeError_ == 0;
}

void UploadFile::finish() const {
  if (writeError_ != 0)
    throw ToolError(std::string("can't store the uploaded file: ") + std::strerror(writeError_));
}

std::filesystem::path UploadFile::path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

}  // namespace cardiolith::tool::serve
