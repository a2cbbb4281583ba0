#pragma once

#include <filesystem>
#include <future>
#include <vector>

#include "cardiolith/model/tag.hpp"
#include "cardiolith/platform/storage_locations.hpp"
#include "cardiolith/storage/storage_options.hpp"
#include "platform/serial_queue.hpp"
#include "storage/document_file.hpp"

namespace cardiolith::detail {

// Keeps the user's tags as one JSON array in the file "tags" of the shared container, and supplies the
// ten default tags whenever there is no stored list or it is empty. Operations run one at a time, in call
// order, on the store's own serial executor; destruction waits for those already submitted.
class TagsStore {
 public:
  // Stops the process with "Can't find documents directory" when the shared container is missing.
  explicit TagsStore(const StorageLocations& locations, StorageOptions options = {});
  TagsStore(const TagsStore&) = delete;
  TagsStore& operator=(const TagsStore&) = delete;

  // What load() found: the stored list, or the defaults in its place.
  struct Loaded {
    std::vector<Tag> tags;
    // A tags file is there but could not be read or decoded (a missing file is the normal first start).
    bool unreadable = false;
  };

  // The stored list in file order; the default tags when it is empty or can't be read or decoded (the
  // failure logged as "Unable to load tags: <description>"). Never writes, never fails.
  [[nodiscard]] std::future<Loaded> load();
  // Replaces the file's whole content with the list. EncodingError or filesystem_error.
  [[nodiscard]] std::future<void> save(std::vector<Tag> tags);

  const std::filesystem::path& localDataPath() const { return file_.path(); }

  // The ten default tags, in their fixed order, with titles translated through StringTable now.
  [[nodiscard]] static std::vector<Tag> defaultTags();

 private:
  DocumentFile file_;
  SerialQueue queue_{"tags-store"};  // last: destroyed first, after running what was submitted
};

}  // namespace cardiolith::detail
