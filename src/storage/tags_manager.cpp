#include "cardiolith/storage/tags_manager.hpp"

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <functional>
#include <mutex>
#include <stdexcept>
#include <unordered_map>
#include <utility>

#include "cardiolith/platform/analytics_backend.hpp"
#include "cardiolith/platform/list_formatter.hpp"
#include "cardiolith/platform/logger.hpp"
#include "cardiolith/platform/text.hpp"
#include "platform/serial_queue.hpp"
#include "platform/thread_annotations.hpp"
#include "storage/tags_store.hpp"

namespace cardiolith {
namespace {

bool titleBefore(const Tag& a, const Tag& b) { return text::canonicalCompare(a.title, b.title) < 0; }
bool titleAfter(const Tag& a, const Tag& b) { return text::canonicalCompare(a.title, b.title) > 0; }

// A stable sort. A change appends one tag to a list that is sorted already, so when the rest is in order
// the new tag is moved to where a stable sort would put it, after its equals, in a linear pass instead of
// a sort of the whole list.
template <class Order>
void sortStably(std::vector<Tag>& tags, Order before) {
  if (tags.size() > 1 && std::is_sorted(tags.begin(), tags.end() - 1, before)) {
    const auto place = std::upper_bound(tags.begin(), tags.end() - 1, tags.back(), before);
    std::rotate(place, tags.end() - 1, tags.end());
    return;
  }
  std::stable_sort(tags.begin(), tags.end(), before);
}

enum class Operation { insert, update, remove };

// One call of insert, update or deleteTag, kept so that it can be replayed on the loaded list.
struct Change {
  Operation operation;
  Tag tag;
};

// One step of a change; observers hear of each step separately.
using Step = std::function<void(std::vector<Tag>&)>;

std::vector<Step> stepsOf(const Change& change) {
  const Tag& tag = change.tag;
  const Step removeSameID = [id = tag.id](std::vector<Tag>& tags) {
    std::erase_if(tags, [&](const Tag& other) { return other.id == id; });
  };
  const Step append = [tag](std::vector<Tag>& tags) { tags.push_back(tag); };
  switch (change.operation) {
    case Operation::insert:
      return {[tag](std::vector<Tag>& tags) {
                std::erase_if(tags, [&](const Tag& other) {
                  return other.id == tag.id || text::canonicallyEqual(other.title, tag.title);
                });
              },
              append, [](std::vector<Tag>& tags) { sortStably(tags, titleBefore); }};
    case Operation::update:
      return {removeSameID, append, [](std::vector<Tag>& tags) { sortStably(tags, titleAfter); }};
    case Operation::remove:
      return {removeSameID};
  }
  return {};
}

}  // namespace

struct TagsManager::Impl {
  Impl(TagsManager& manager, const StorageLocations& locations, StorageOptions options)
      : owner(manager), store(locations, options) {
    work.async([this] {
      auto loadedList = store.load().get();
      {
        detail::MutexLock lock(stateMutex);
        loadUnreadable = loadedList.unreadable;
      }
      applyLoaded(std::move(loadedList.tags));
    });
  }

  void change(const Change& change) {
    std::lock_guard serial(changeMutex);
    for (const auto& step : stepsOf(change)) {
      owner.sendObjectWillChange();
      // With nobody subscribed there is no list to copy; a subscriber that arrives meanwhile is handed the
      // current list once this change is done (greet waits for changeMutex).
      const bool anyoneListening = publisher.subscriberCount() > 0;
      std::vector<Tag> published;
      {
        detail::MutexLock lock(stateMutex);
        step(tags);
        indexIsStale = true;
        if (anyoneListening) published = tags;
      }
      if (anyoneListening) publisher.send(published);
    }
    {
      detail::MutexLock lock(stateMutex);
      if (!loaded) changesBeforeLoad.push_back(change);
    }
    work.async([this] { save(); });
  }

  // Runs on `work`: the loaded list, with the changes made while it loaded replayed on it, becomes the list.
  void applyLoaded(std::vector<Tag> loadedTags) {
    {
      std::lock_guard serial(changeMutex);
      owner.sendObjectWillChange();
      std::vector<Tag> published;
      {
        detail::MutexLock lock(stateMutex);
        for (const auto& change : changesBeforeLoad) {
          for (const auto& step : stepsOf(change)) step(loadedTags);
        }
        changesBeforeLoad.clear();
        tags = std::move(loadedTags);
        indexIsStale = true;
        loaded = true;
        published = tags;
      }
      publisher.send(published);
    }
    {
      detail::MutexLock lock(stateMutex);
      loadPublished = true;
    }
    loadPublishedCondition.notify_all();
  }

  // Runs on `work`, after every earlier save: writes the list as it is now, the newest one.
  void save() {
    std::vector<Tag> snapshot;
    {
      detail::MutexLock lock(stateMutex);
      snapshot = tags;
    }
    // A shared future keeps the error it carries until after the handler has read it (future::get()
    // would let go of it first), so that the store's thread never frees it under the handler.
    const auto saved = store.save(std::move(snapshot)).share();
    try {
      saved.get();
    } catch (const std::exception& error) {
      Logger::standard().error("Failed to save tags " + localizedDescription(error));
      detail::MutexLock lock(stateMutex);
      saveFailure = std::current_exception();
    }
  }

  // Hands a new, already registered subscriber the current list. Under changeMutex, so that a change made
  // meanwhile reaches it after this list, never before: its last list is always the current one.
  void greet(const Publisher<std::vector<Tag>>::Callback& subscriber) {
    std::lock_guard serial(changeMutex);
    std::vector<Tag> current;
    {
      detail::MutexLock lock(stateMutex);
      current = tags;
    }
    subscriber(current);
  }

  // The last tag in list order with this id, or null.
  const Tag* findLocked(const UUID& id) const CARDIOLITH_REQUIRES(stateMutex) {
    if (indexIsStale) {
      index.clear();
      for (std::size_t position = 0; position < tags.size(); ++position)
        index.insert_or_assign(tags[position].id, position);
      indexIsStale = false;
    }
    const auto found = index.find(id);
    return found == index.end() ? nullptr : &tags[found->second];
  }

  void refuseToWaitOnOwnThread(const char* function) const {
    if (work.isCurrent()) {
      throw std::logic_error(std::string("TagsManager::") + function +
                             " called from a notification of the initial load; it would wait for itself");
    }
  }

  TagsManager& owner;
  detail::TagsStore store;
  ListFormatter formatter{};
  Publisher<std::vector<Tag>> publisher{[this](const auto& subscriber) { greet(subscriber); }};

  // Serialises the changes and their notifications, so observers hear of changes in the order they were
  // made. Recursive: an observer may make a change from its callback.
  std::recursive_mutex changeMutex;
  // Guards the fields below; never held while observers are called.
  mutable detail::Mutex stateMutex;
  std::vector<Tag> tags CARDIOLITH_GUARDED_BY(stateMutex);
  // Positions in `tags`.
  mutable std::unordered_map<UUID, std::size_t> index CARDIOLITH_GUARDED_BY(stateMutex);
  mutable bool indexIsStale CARDIOLITH_GUARDED_BY(stateMutex) = true;
  bool loaded CARDIOLITH_GUARDED_BY(stateMutex) = false;
  std::vector<Change> changesBeforeLoad CARDIOLITH_GUARDED_BY(stateMutex);
  bool loadPublished CARDIOLITH_GUARDED_BY(stateMutex) = false;
  bool loadUnreadable CARDIOLITH_GUARDED_BY(stateMutex) = false;
  // The latest failed save's error, until finishPendingSaves() reports it.
  std::exception_ptr saveFailure CARDIOLITH_GUARDED_BY(stateMutex);
  mutable std::condition_variable loadPublishedCondition;

  // The initial load, then every save, one after another. Last: destroyed first, after running them all.
  mutable detail::SerialQueue work{"tags-manager"};
};

TagsManager::TagsManager() : TagsManager(StorageLocations::current()) {}

TagsManager::TagsManager(StorageLocations locations, StorageOptions options)
    : impl_(std::make_shared<Impl>(*this, locations, options)) {}

TagsManager::~TagsManager() = default;

std::vector<Tag> TagsManager::tags() const {
  detail::MutexLock lock(impl_->stateMutex);
  return impl_->tags;
}

Publisher<std::vector<Tag>>& TagsManager::tagsPublisher() { return impl_->publisher; }

std::optional<Tag> TagsManager::tag(const UUID& id) const {
  detail::MutexLock lock(impl_->stateMutex);
  if (const Tag* found = impl_->findLocked(id)) return *found;
  return std::nullopt;
}

std::vector<Tag> TagsManager::tags(const std::set<UUID>& ids) const {
  std::vector<Tag> found;
  {
    detail::MutexLock lock(impl_->stateMutex);
    for (const auto& id : ids) {
      if (const Tag* tag = impl_->findLocked(id)) found.push_back(*tag);
    }
  }
  std::stable_sort(found.begin(), found.end(), titleBefore);
  return found;
}

std::optional<std::string> TagsManager::formattedListString(const std::set<UUID>& ids) const {
  std::vector<std::string> titles;
  for (auto& tag : tags(ids)) titles.push_back(std::move(tag.title));
  return impl_->formatter.string(titles);
}

void TagsManager::insert(const Tag& tag) { impl_->change({Operation::insert, tag}); }
void TagsManager::update(const Tag& tag) { impl_->change({Operation::update, tag}); }
void TagsManager::deleteTag(const Tag& tag) { impl_->change({Operation::remove, tag}); }

void TagsManager::waitUntilLoaded() const {
  impl_->refuseToWaitOnOwnThread("waitUntilLoaded()");
  detail::MutexLock lock(impl_->stateMutex);
  while (!impl_->loadPublished) lock.wait(impl_->loadPublishedCondition);
}

void TagsManager::waitForPendingSaves() const {
  impl_->refuseToWaitOnOwnThread("waitForPendingSaves()");
  impl_->work.submit([] {}).get();
}

void TagsManager::finishPendingSaves() const {
  impl_->refuseToWaitOnOwnThread("finishPendingSaves()");
  impl_->work.submit([] {}).get();
  std::exception_ptr failure;
  {
    detail::MutexLock lock(impl_->stateMutex);
    std::swap(failure, impl_->saveFailure);
  }
  if (failure) std::rethrow_exception(failure);
}

bool TagsManager::loadFailed() const {
  detail::MutexLock lock(impl_->stateMutex);
  return impl_->loadUnreadable;
}

}  // namespace cardiolith
