#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <thread>

#include "cardiolith/platform/text.hpp"
#include "cardiolith/storage/tags_manager.hpp"
#include "platform/random.hpp"
#include "storage_test_support.hpp"

namespace cardiolith::testing {
namespace {

class TagsManagerConcurrencyTest : public StorageTest {};

// The index agrees with the list: each id resolves to the last tag in list order with that id.
::testing::AssertionResult indexAgreesWithList(const TagsManager& manager) {
  const auto tags = manager.tags();
  for (auto tag = tags.rbegin(); tag != tags.rend(); ++tag) {
    if (std::find_if(tags.rbegin(), tag, [&](const Tag& later) { return later.id == tag->id; }) != tag)
      continue;
    if (manager.tag(tag->id) != *tag)
      return ::testing::AssertionFailure() << tag->id.uuidString() << " resolves wrongly";
  }
  return ::testing::AssertionSuccess();
}

TEST_F(TagsManagerConcurrencyTest, ConcurrentChangesEndWithTheFileEqualToTheListObserversSawLast) {
  TagsManager manager(locations());  // no file: starts loading the defaults while the threads begin

  // Changes are made one at a time, notifications included: while a subscriber runs, the list is the one
  // it was handed, and the index agrees with it.
  std::mutex seenMutex;
  std::vector<Tag> lastSeen;
  std::atomic<int> notifications{0};
  std::atomic<int> inconsistentNotifications{0};
  auto subscription = manager.tagsPublisher().subscribe([&](const std::vector<Tag>& tags) {
    ++notifications;
    if (manager.tags() != tags || !indexAgreesWithList(manager)) ++inconsistentNotifications;
    std::lock_guard lock(seenMutex);
    lastSeen = tags;
  });

  constexpr int threads = 4;
  constexpr int changesPerThread = 150;
  std::atomic<bool> changing{true};
  std::atomic<int> badLookups{0};
  std::thread reader([&] {
    while (changing) {
      std::set<UUID> ids;
      for (const auto& tag : manager.tags()) ids.insert(tag.id);
      const auto found = manager.tags(ids);
      const bool sorted = std::is_sorted(found.begin(), found.end(), [](const Tag& a, const Tag& b) {
        return text::canonicalCompare(a.title, b.title) < 0;
      });
      if (!sorted || found.size() > ids.size()) ++badLookups;
      static_cast<void>(manager.formattedListString(ids));
    }
  });
  std::vector<std::thread> writers;
  for (int t = 0; t < threads; ++t) {
    writers.emplace_back([&, t] {
      for (int i = 0; i < changesPerThread; ++i) {
        const auto n = static_cast<int>(detail::random::uniformBelow(24));
        const Tag tag{UUID(UUID::Bytes{static_cast<std::uint8_t>(n + 1)}),
                      "Tag " + std::to_string((n * 7 + t) % 24), "abcdef"};
        switch ((i + t) % 3) {
          case 0:
            manager.insert(tag);
            break;
          case 1:
            manager.update(tag);
            break;
          default:
            manager.deleteTag(tag);
            break;
        }
      }
    });
  }
  for (auto& writer : writers) writer.join();
  changing = false;
  reader.join();
  manager.waitForPendingSaves();

  EXPECT_EQ(inconsistentNotifications.load(), 0);
  EXPECT_EQ(badLookups.load(), 0);
  EXPECT_GE(notifications.load(), threads * changesPerThread);
  EXPECT_TRUE(indexAgreesWithList(manager));
  {
    std::lock_guard lock(seenMutex);
    EXPECT_EQ(lastSeen, manager.tags());
  }
  EXPECT_EQ(json::decode<std::vector<Tag>>(fileContent(container() / "tags")), manager.tags());
}

}  // namespace
}  // namespace cardiolith::testing
