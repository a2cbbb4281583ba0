#include "cardiolith/storage/tags_manager.hpp"

#include <algorithm>
#include <atomic>
#include <fstream>
#include <future>
#include <sstream>

#include "cardiolith/platform/list_formatter.hpp"
#include "platform/file_io.hpp"
#include "storage_test_support.hpp"
#include "support/test_seed.hpp"

namespace cardiolith::testing {
namespace {

UUID idNumber(int n) { return UUID(UUID::Bytes{static_cast<std::uint8_t>(n)}); }

// "3:Cherry,1:Apple": tags with those id numbers and titles, in that order; "" is no tags.
std::vector<Tag> tagsFrom(const std::string& text) {
  std::vector<Tag> tags;
  std::istringstream items(text);
  for (std::string item; std::getline(items, item, ',');) {
    const auto colon = item.find(':');
    tags.push_back(Tag{idNumber(std::stoi(item.substr(0, colon))), item.substr(colon + 1), "00ff00"});
  }
  return tags;
}

// Makes changes such as "insert 3:Cherry delete 1:Apple"; returns how many steps observers should hear of.
std::size_t change(TagsManager& manager, const std::string& changes) {
  std::size_t steps = 0;
  std::istringstream words(changes);
  for (std::string operation, tag; words >> operation >> tag;) {
    if (operation == "insert") manager.insert(tagsFrom(tag)[0]);
    if (operation == "update") manager.update(tagsFrom(tag)[0]);
    if (operation == "delete") manager.deleteTag(tagsFrom(tag)[0]);
    steps += operation == "delete" ? 1U : 3U;  // remove; or remove, append and sort
  }
  return steps;
}

// tag(id) of ids 1 to 24 gives the last tag in list order with that id, or nothing when none has it.
::testing::AssertionResult indexAgreesWithList(const TagsManager& manager) {
  const auto tags = manager.tags();
  for (int n = 1; n <= 24; ++n) {
    const UUID id = idNumber(n);
    const auto last = std::find_if(tags.rbegin(), tags.rend(), [&](const Tag& tag) { return tag.id == id; });
    if (manager.tag(id) != (last == tags.rend() ? std::nullopt : std::optional(*last)))
      return ::testing::AssertionFailure() << id.uuidString() << " resolves wrongly";
  }
  return ::testing::AssertionSuccess();
}

class TagsManagerTest : public StorageTest {
 protected:
  std::vector<Tag> savedTags() const { return json::decode<std::vector<Tag>>(readWholeFile(tagsFile())); }
};

// Each change gives the expected list, the index follows it, observers hear of every step (announced
// beforehand, while the list is still as the previous step left it), and the file holds the list once the
// saves are done. A change to a sorted list moves the new tag into place; to an unsorted one, sorts it all.
TEST_F(TagsManagerTest, ChangesOrderTheListAndSaveIt) {
  const char* const cases[][3] = {
      // the stored list, the changes, the list they give
      // Insert drops the same id and canonically equal titles, without case folding, then sorts ascending.
      {"1:Morning,2:Evening,3:Afternoon,4:cafe\u0301", "insert 5:Evening insert 1:Zebra insert 6:caf\u00e9",
       "3:Afternoon,5:Evening,1:Zebra,6:caf\u00e9"},
      {"1:Morning", "insert 2:morning", "1:Morning,2:morning"},
      {"1:Apple,2:banana,3:Cherry", "update 2:Banana", "3:Cherry,2:Banana,1:Apple"},  // update: descending
      {"3:Cherry,2:Banana,1:Apple", "update 4:Cherry", "3:Cherry,4:Cherry,2:Banana,1:Apple"},  // after equals
      {"4:Cherry,3:Cherry,2:Banana,1:Apple", "insert 5:Date", "1:Apple,2:Banana,4:Cherry,3:Cherry,5:Date"},
      {"1:b,2:a", "insert 3:B insert 4:A update 4:A", "1:b,2:a,3:B,4:A"},    // upper case sorts first
      {"3:Cherry,1:Apple,2:Banana", "delete 1:Other", "3:Cherry,2:Banana"},  // by id; the order stays
      {"1:Only", "delete 1:Only", ""},
      // Every change removes all the tags of an id stored twice.
      {"1:First,2:Other,1:Second", "insert 1:New", "1:New,2:Other"},
      {"1:First,2:Other,1:Second", "update 1:New", "2:Other,1:New"},
      {"1:First,2:Other,1:Second", "delete 1:First", "2:Other"},
  };
  for (const auto& [stored, changes, expected] : cases) {
    SCOPED_TRACE(std::string(changes) + " on " + stored);
    writeWholeFile(tagsFile(), json::encode(tagsFrom(stored)));
    TagsManager manager(locations());
    manager.waitUntilLoaded();
    EXPECT_TRUE(indexAgreesWithList(manager));
    std::vector<std::vector<Tag>> published, announced;
    auto subscription =
        manager.tagsPublisher().subscribe([&](const auto& tags) { published.push_back(tags); });
    auto willChange = manager.objectWillChange().subscribe([&] { announced.push_back(manager.tags()); });

    const std::size_t steps = change(manager, changes);
    EXPECT_EQ(manager.tags(), tagsFrom(expected));
    EXPECT_TRUE(indexAgreesWithList(manager));
    EXPECT_EQ(published.size(), 1 + steps);  // the first inside subscribe()
    announced.push_back(manager.tags());
    EXPECT_EQ(announced, published);
    manager.waitForPendingSaves();
    EXPECT_EQ(savedTags(), tagsFrom(expected));
  }
}

TEST_F(TagsManagerTest, LookupsByIdsSkipUnknownIdsAndSortByTitle) {
  writeWholeFile(tagsFile(), json::encode(tagsFrom("3:Cherry,1:apple,2:Banana")));
  TagsManager manager(locations());
  manager.waitUntilLoaded();
  EXPECT_EQ(manager.tags(std::set<UUID>{idNumber(1), idNumber(2), idNumber(42)}),
            tagsFrom("2:Banana,1:apple"));
  EXPECT_EQ(manager.formattedListString({idNumber(1), idNumber(2)}),
            ListFormatter{}.string({"Banana", "apple"}));
}

// The stored file is a pipe, so the load waits until the test writes the stored list into it: the insert
// is certainly made before the load is applied, and the index built meanwhile must be rebuilt after it.
// Durable mode, so that the save replaces the pipe. Destruction waits for the save made just before it.
TEST_F(TagsManagerTest, ChangeMadeBeforeTheLoadIsReplayedOnTheStoredTags) {
  // The load waits until the file has been written, after the first change.
  std::promise<void> written;
  std::shared_future<void> writtenSignal = written.get_future().share();
  detail::setReadHook([writtenSignal](const std::filesystem::path&) { writtenSignal.wait(); });
  {
    TagsManager manager(locations(), StorageOptions{.durable = true});
    change(manager, "insert 3:Early");
    EXPECT_EQ(manager.tags(), tagsFrom("3:Early"));
    EXPECT_TRUE(indexAgreesWithList(manager));

    std::ofstream(tagsFile()) << json::encode(tagsFrom("2:Zulu,1:Alpha"));
    written.set_value();
    manager.waitUntilLoaded();
    detail::setReadHook({});
    EXPECT_EQ(manager.tags(), tagsFrom("1:Alpha,3:Early,2:Zulu"));
    EXPECT_TRUE(indexAgreesWithList(manager));
    change(manager, "delete 1:Alpha");
  }
  EXPECT_EQ(savedTags(), tagsFrom("3:Early,2:Zulu"));
}

using TagsManagerConcurrencyTest = TagsManagerTest;

// Four threads insert, update, delete and look up 24 ids while the initial load runs.
// Changes are made one at a time, notifications included: while a subscriber runs, the list is the one it
// was handed and the index agrees with it. At the end the file holds the list that observers saw last.
TEST_F(TagsManagerConcurrencyTest, ConcurrentChangesEndWithTheFileEqualToTheListObserversSawLast) {
  TagsManager manager(locations());  // no file: starts loading the defaults while the threads begin
  std::mutex seenMutex;
  std::vector<Tag> lastSeen;
  std::atomic<int> inconsistentNotifications{0};
  auto subscription = manager.tagsPublisher().subscribe([&](const std::vector<Tag>& tags) {
    if (manager.tags() != tags || !indexAgreesWithList(manager)) ++inconsistentNotifications;
    std::lock_guard lock(seenMutex);
    lastSeen = tags;
  });

  std::vector<std::thread> writers;
  for (int t = 0; t < 4; ++t) {
    writers.emplace_back([&, t] {
      const char* const operations[] = {"insert", "update", "delete"};
      auto random = seededGenerator(static_cast<std::uint64_t>(t));
      std::uniform_int_distribution<int> tagNumber(1, 24);
      for (int i = 0; i < 150; ++i) {
        const auto n = tagNumber(random);
        change(manager, std::string(operations[static_cast<std::size_t>((i + t) % 3)]) + " " +
                            std::to_string(n) + ":Tag" + std::to_string((n * 7 + t) % 24));
        // Rebuilds the index under the others' changes; what lookups give is checked above.
        static_cast<void>(manager.formattedListString({idNumber(n), idNumber(n % 24 + 1)}));
      }
    });
  }
  for (auto& writer : writers) writer.join();
  manager.waitForPendingSaves();  // the load's notification, too, is over

  EXPECT_EQ(inconsistentNotifications.load(), 0);
  EXPECT_TRUE(indexAgreesWithList(manager));
  EXPECT_EQ(lastSeen, manager.tags());
  EXPECT_EQ(savedTags(), manager.tags());
}

}  // namespace
}  // namespace cardiolith::testing
