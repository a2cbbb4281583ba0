#pragma once

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "cardiolith/export.hpp"
#include "cardiolith/model/tag.hpp"
#include "cardiolith/platform/observable.hpp"
#include "cardiolith/platform/storage_locations.hpp"
#include "cardiolith/storage/storage_options.hpp"

namespace cardiolith {

// The live list of tags, loaded once in the background from the file "tags" of the shared container (or
// the ten default tags), with an index by id. Every change saves the whole list in the background; the
// index is rebuilt by the first lookup after a change.
//
// Threads: every member may be called from any thread. The list and the index are guarded by the manager;
// change notifications fire on the thread that makes the change (the loaded list's on a background
// thread), outside the lock that guards the list, so a subscriber may call back into the manager, change
// the list included. Changes are made one at a time, and observers hear of them in that order. The three
// wait functions must not be called from a notification callback (from the initial load's they throw
// std::logic_error rather than wait for themselves).
//
// Ordering of saves: saves go to the store one after another in the order of the changes, and each writes
// the list as it is when it runs, so the list written last is always the newest list.
//
// Changes before the load: a change made before the initial load has been applied is recorded and
// replayed on the loaded list when it arrives, so neither the change nor the stored tags are lost. Its
// save waits for the load.
//
// Destruction waits for the initial load and for every save.
class CARDIOLITH_EXPORT TagsManager : public ObservableObject {
 public:
  // Stops the process with "Can't find documents directory" when the shared container is missing.
  TagsManager();
  explicit TagsManager(StorageLocations locations, StorageOptions options = {});
  ~TagsManager() override;

  // The current list. Until the initial load has been applied it holds only the changes made meanwhile
  // (usually nothing).
  [[nodiscard]] std::vector<Tag> tags() const;
  // The list after each change (each step of insert and update separately, also a step that changes
  // nothing); a new subscriber receives the current list inside subscribe().
  Publisher<std::vector<Tag>>& tagsPublisher();

  // The last tag in list order with this id.
  [[nodiscard]] std::optional<Tag> tag(const UUID& id) const;
  // The known tags of these ids, sorted by title ascending (stable); unknown ids are skipped.
  [[nodiscard]] std::vector<Tag> tags(const std::set<UUID>& ids) const;
  // The titles of tags(ids) as one list text in the current locale.
  [[nodiscard]] std::optional<std::string> formattedListString(const std::set<UUID>& ids) const;

  // Removes every tag with the same id or a canonically equal title, appends the tag and sorts the list by
  // title ascending.
  void insert(const Tag& tag);
  // Removes every tag with the same id, appends the tag and sorts the list by title descending.
  void update(const Tag& tag);
  // Removes every tag with the same id; the rest keep their order.
  void deleteTag(const Tag& tag);

  // Blocks until the initial load has been applied and published.
  void waitUntilLoaded() const;
  // Blocks until every save started before the call has finished (a failure already logged).
  void waitForPendingSaves() const;
  // Like waitForPendingSaves(), then rethrows the error of the latest save that failed since the previous
  // call (EncodingError or std::filesystem::filesystem_error; it was logged as "Failed to save tags ..."
  // too), so that a caller learns of it without reading the log. Each failure is reported once.
  void finishPendingSaves() const;
  // Whether the initial load found a tags file it could not read or decode and so started from the default
  // tags (logged as "Unable to load tags: ..."); a change would then replace that file. A missing file is
  // the normal first start, not a failure. False until the load has been applied (see waitUntilLoaded()).
  [[nodiscard]] bool loadFailed() const;

 private:
  struct Impl;
  std::shared_ptr<Impl> impl_;
};

}  // namespace cardiolith
