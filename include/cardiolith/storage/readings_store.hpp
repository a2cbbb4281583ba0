#pragma once

#include <filesystem>
#include <future>
#include <memory>

#include "cardiolith/export.hpp"
#include "cardiolith/model/readings.hpp"
#include "cardiolith/platform/storage_locations.hpp"
#include "cardiolith/storage/storage_options.hpp"

namespace cardiolith {

// Keeps the readings document in the file "readings" of the shared container. Construction moves a file
// left in the private documents folder into the container and, with the launch argument
// "DELETE_ALL_RECORDS", removes the file. Operations run one at a time, in call order, on the store's own
// serial executor; nothing is cached between them. Separate stores share the file without a lock.
// Destroying a store waits for the operations already submitted.
class CARDIOLITH_EXPORT ReadingsStore {
 public:
  // Stops the process with "Can't find documents directory" when either folder is missing.
  ReadingsStore();
  explicit ReadingsStore(StorageLocations locations, StorageOptions options = {});
  ~ReadingsStore();
  ReadingsStore(const ReadingsStore&) = delete;
  ReadingsStore& operator=(const ReadingsStore&) = delete;

  // The stored document, or an empty one (logged) when the file can't be read or decoded. Never fails.
  [[nodiscard]] std::future<Readings> load();
  // Like load(), but a file that exists and can't be read or decoded is an error (DecodingError or
  // std::filesystem::filesystem_error) instead of an empty document; a missing file is an empty document.
  // For writers that must not replace a document they could not read.
  [[nodiscard]] std::future<Readings> loadExisting();
  // Replaces the file's whole content. EncodingError (the file untouched) or filesystem_error. The
  // readings are encoded on the store's executor: don't change their healthKitID until the future is ready.
  [[nodiscard]] std::future<void> save(Readings readings);

  // The file that load() reads and save() writes.
  const std::filesystem::path& localDataPath() const;
  // True when the old file of the documents folder could not be moved into the shared container (most
  // often because a file is there too), so that localDataPath() is the old file and the shared one is
  // neither read nor written. A host should tell the user, who may want to merge the two.
  bool keptOldFile() const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace cardiolith
