#include "document_files.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <map>
#include <mutex>
#include <system_error>

#include "corpus.hpp"
#include "temporary_folder.hpp"

namespace cardiolith::bench {
namespace {

[[noreturn]] void failWithErrno(const char* what, const std::filesystem::path& path) {
  throw std::filesystem::filesystem_error(what, path, std::error_code(errno, std::generic_category()));
}

class Descriptor {
 public:
  explicit Descriptor(int fd) : fd_(fd) {}
  ~Descriptor() {
    if (fd_ >= 0) ::close(fd_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int get() const { return fd_; }

 private:
  int fd_;
};

}  // namespace

const std::filesystem::path& documentFolder(std::size_t readingCount) {
  static std::mutex mutex;
  static TemporaryFolder root;
  static std::map<std::size_t, std::filesystem::path> written;
  std::lock_guard lock(mutex);
  auto& folder = written[readingCount];
  if (folder.empty()) {
    folder = root.path() / std::to_string(readingCount);
    std::filesystem::create_directory(folder);
    const std::string& text = corpus(readingCount).text;
    std::ofstream file(folder / "readings", std::ios::binary);
    file.write(text.data(), static_cast<std::streamsize>(text.size()));
    if (!file.flush()) throw std::runtime_error("cannot write the document file");
  }
  return folder;
}

std::string readFileBytes(const std::filesystem::path& path) {
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (file.get() < 0) failWithErrno("cannot read", path);
  struct stat status {};
  if (::fstat(file.get(), &status) != 0) failWithErrno("cannot read", path);
  std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t count = ::read(file.get(), bytes.data() + done, bytes.size() - done);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) failWithErrno("cannot read", path);
    if (count == 0) break;
    done += static_cast<std::size_t>(count);
  }
  bytes.resize(done);
  return bytes;
}

void writeFileBytes(const std::filesystem::path& path, std::string_view bytes) {
  const Descriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644));
  if (file.get() < 0) failWithErrno("cannot write", path);
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t count = ::write(file.get(), bytes.data() + done, bytes.size() - done);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) failWithErrno("cannot write", path);
    done += static_cast<std::size_t>(count);
  }
}

}  // namespace cardiolith::bench
