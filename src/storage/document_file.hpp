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
#include "model/json_in_place.hpp"

namespace cardiolith::detail {

// The one file that holds a store's document: read whole, written whole, plainly in place or durably
// (StorageOptions). Not synchronised: its store calls it from the store's own serial executor.
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
      return decode<Document>(read());
    } catch (const std::exception& error) {
      Logger::standard().error(std::string(failurePrefix) + localizedDescription(error));
      keepUnreadable();
      return std::nullopt;
    }
  }

  // The document in `bytes`; the readings document is decoded in place (see read()).
  template <class Document>
  static Document decode(const std::string& bytes) {
    if constexpr (std::is_same_v<Document, Readings>) {
      return json_detail::decodeReadingsInPlace(bytes);
    } else {
      return json::decode<Document>(bytes);
    }
  }

  // The whole content; filesystem_error when it can't be read.
  std::string read() const;
  // Like read(), but nothing when there is no file.
  std::optional<std::string> readIfPresent() const;
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
