#include "storage/document_file.hpp"

#include <chrono>
#include <ctime>
#include <system_error>
#include <utility>

#include "model/readings_decoding.hpp"
#include "platform/file_io.hpp"

namespace cardiolith::detail {
namespace {

// The current moment in UTC, ISO 8601 basic form: "20240305T142210Z".
std::string utcTimestamp() {
  const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  std::tm utc{};
  ::gmtime_r(&now, &utc);
  char text[32];
  std::strftime(text, sizeof text, "%Y%m%dT%H%M%SZ", &utc);
  return text;
}

bool holdsExactly(const std::filesystem::path& path, std::string_view bytes) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error) ||
      std::filesystem::file_size(path, error) != bytes.size()) {
    return false;
  }
  try {
    return readWholeFile(path) == bytes;
  } catch (const std::filesystem::filesystem_error&) {
    return false;
  }
}

}  // namespace

DocumentFile::DocumentFile(std::filesystem::path path, StorageOptions options)
    : path_(std::move(path)), options_(options) {}

// The spare capacity lets the readings decoder read the bytes where they are, without a padded copy.
std::string DocumentFile::read() const { return readWholeFile(path_, json_detail::kReadPadding); }

Readings DocumentFile::readReadings() const {
  {
    FileReader file(path_);
    const json_detail::ReadMore readMore = [&](char* into, std::size_t capacity) {
      return file.read(into, capacity);
    };
    if (auto readings = json_detail::decodeReadingsInWindows(readMore, file.size()))
      return std::move(*readings);
  }
  // Not in the usual shape, or broken: decoded whole, the text gives the same readings or names the fault.
  return json_detail::decodeReadingsInPlace(read());
}

std::optional<Readings> DocumentFile::readReadingsIfPresent() const {
  try {
    return readReadings();
  } catch (const std::filesystem::filesystem_error& error) {
    if (error.code() == std::errc::no_such_file_or_directory) return std::nullopt;
    throw;
  }
}

void DocumentFile::write(std::string_view bytes) const {
  if (options_.durable) {
    replaceWholeFileDurably(path_, bytes);
  } else {
    writeWholeFile(path_, bytes);
  }
}

void DocumentFile::keepUnreadable() const {
  std::error_code error;
  if (!options_.durable || !std::filesystem::is_regular_file(path_, error)) return;
  try {
    const std::string bytes = read();
    const std::string prefix = path_.filename().string() + ".unreadable-";
    const auto folder = path_.parent_path();

    // The same unreadable file found again (at the next start, say) is kept once.
    for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
      if (entry.path().filename().string().starts_with(prefix) && holdsExactly(entry.path(), bytes)) return;
    }

    // Two different unreadable documents within one second get "-2", "-3", ... after the timestamp.
    const std::string name = prefix + utcTimestamp();
    for (int attempt = 1;; ++attempt) {
      const auto copy = folder / (attempt == 1 ? name : name + "-" + std::to_string(attempt));
      try {
        createFileDurably(copy, bytes);
        Logger::standard().info("Kept a copy of the unreadable file at " + copy.string());
        return;
      } catch (const std::filesystem::filesystem_error& failure) {
        if (failure.code() != std::errc::file_exists || attempt == 100) throw;
      }
    }
  } catch (const std::exception& failure) {
    Logger::standard().error("Unable to keep a copy of the unreadable file " + path_.string() + ": " +
                             localizedDescription(failure));
  }
}

}  // namespace cardiolith::detail
