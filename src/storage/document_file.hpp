#pragma once

#include <exception>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

#include "cardiolith/model/json.hpp"
#include "cardiolith/platform/analytics_backend.hpp"
#include "cardiolith/platform/logger.hpp"
#include "cardiolith/storage/storage_options.hpp"

namespace cardiolith::detail {

// The one file that holds a store's document: read whole (the readings document a window at a time),
// written whole, plainly in place or durably (StorageOptions). Not synchronised: its store calls it from the
// store's own serial executor.
class DocumentFile {
 public:
  DocumentFile(std::filesystem::path path, StorageOptions options);

  const std::filesystem::path& path() const { return path_; }

  // The decoded document, or nothing when the file can't be read or decoded: then the error's
  // description is logged after `failurePrefix` (for example "Unable to load tags: ") and, in durable
  // mode, the file is kept aside before anything can overwrite it.
  template <class Document>
  std::optional<Document> load(std::string_view failurePrefix) const {
    try {
      if constexpr (std::is_same_v<Document, Readings>) {
        return readReadings();
      } else {
        return json::decode<Document>(read());
      }
    } catch (const std::exception& error) {
      Logger::standard().error(std::string(failurePrefix) + localizedDescription(error));
      keepUnreadable();
      return std::nullopt;
    }
  }

  // The readings document, read and decoded a window at a time, so that a large log never has its whole
  // text in memory. filesystem_error when it can't be read, DecodingError when it can't be decoded.
  Readings readReadings() const;
  // Like readReadings(), but nothing when there is no file.
  std::optional<Readings> readReadingsIfPresent() const;

  // The whole content; filesystem_error when it can't be read.
  std::string read() const;
  // Replaces the whole content: in place, or durably through a temporary file. filesystem_error.
  void write(std::string_view bytes) const;

 private:
  // In durable mode, copies a regular file that could not be read or decoded to
  // "<name>.unreadable-<UTC timestamp>" in the same folder, unless an identical copy is there already.
  // A copy that can't be made is logged; nothing is thrown.
  void keepUnreadable() const;

  std::filesystem::path path_;
  StorageOptions options_;
};

}  // namespace cardiolith::detail
