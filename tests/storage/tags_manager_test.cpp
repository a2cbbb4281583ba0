#include "cardiolith/storage/tags_manager.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>

#include "cardiolith/platform/list_formatter.hpp"
#include "storage/tags_store.hpp"
#include "storage_test_support.hpp"

namespace cardiolith::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

UUID idNumber(int n) {
  char text[37];
  std::snprintf(text, sizeof text, "00000000-0000-4000-8000-%012d", n);
  return *UUID::parse(text);
}

Tag makeTag(int n, std::string title) { return Tag{idNumber(n), std::move(title), "00ff00"}; }

std::vector<std::string> titlesOf(const std::vector<Tag>& tags) {
  std::vector<std::string> titles;
  for (const auto& tag : tags) titles.push_back(tag.title);
  return titles;
}

class TagsManagerTest : public StorageTest {
 protected:
  fs::path tagsFile() const { return container() / "tags"; }
  void storeTags(const std::vector<Tag>& tags) const { writeFile(tagsFile(), json::encode(tags)); }
  std::vector<Tag> savedTags() const { return json::decode<std::vector<Tag>>(fileContent(tagsFile())); }

  // A loaded manager over the stored tags.
  std::unique_ptr<TagsManager> managerWith(const std::vector<Tag>& stored) {
    storeTags(stored);
    auto manager = std::make_unique<TagsManager>(locations());
    manager->waitUntilLoaded();
    return manager;
  }

  // After the pending saves, the file holds exactly the in-memory list.
  void expectFileMatches(const TagsManager& manager) const {
    manager.waitForPendingSaves();
    EXPECT_EQ(savedTags(), manager.tags());
  }
};

TEST_F(TagsManagerTest, LoadsTheStoredListInFileOrderOrTheDefaults) {
  const std::vector<Tag> stored{makeTag(2, "Zulu"), makeTag(1, "Alpha")};
  EXPECT_EQ(managerWith(stored)->tags(), stored);

  fs::remove(tagsFile());
  TagsManager fresh(locations());
  fresh.waitUntilLoaded();
  EXPECT_EQ(fresh.tags(), detail::TagsStore::defaultTags());
  EXPECT_FALSE(fs::exists(tagsFile()));  // the defaults reach the file only with the first change
}

TEST_F(TagsManagerTest, InsertReplacesTheSameIdOrACanonicallyEqualTitleAndSortsAscending) {
  auto manager = managerWith(
      {makeTag(1, "Morning"), makeTag(2, "Evening"), makeTag(3, "Afternoon"), makeTag(4, "cafe\u0301")});
  manager->insert(makeTag(5, "Evening"));    // same title, new id: the old tag goes
  manager->insert(makeTag(1, "Zebra"));      // same id, new title: replaced
  manager->insert(makeTag(6, "caf\u00e9"));  // canonically equal to the decomposed title
  manager->insert(makeTag(7, "evening"));    // no case folding: both stay

  EXPECT_EQ(manager->tags(),
            (std::vector<Tag>{makeTag(3, "Afternoon"), makeTag(5, "Evening"), makeTag(1, "Zebra"),
                              makeTag(6, "caf\u00e9"), makeTag(7, "evening")}));
  EXPECT_FALSE(manager->tag(idNumber(2)).has_value());
  EXPECT_FALSE(manager->tag(idNumber(4)).has_value());
  EXPECT_EQ(manager->tag(idNumber(1)), makeTag(1, "Zebra"));
  expectFileMatches(*manager);
}

TEST_F(TagsManagerTest, InsertSortsTheUnsortedDefaultSetAscending) {
  fs::remove(tagsFile());
  TagsManager manager(locations());
  manager.waitUntilLoaded();
  manager.insert(makeTag(1, "Lying down"));
  EXPECT_THAT(titlesOf(manager.tags()),
              ElementsAre("After medication", "Afternoon", "Before medication", "Evening", "Left arm",
                          "Lying down", "Morning", "Right arm", "Sitting", "Standing", "Without medication"));
  expectFileMatches(manager);
}

TEST_F(TagsManagerTest, UpdateSortsDescendingAddsUnknownIdsAndKeepsEqualTitlesInOrder) {
  auto manager = managerWith({makeTag(1, "Apple"), makeTag(2, "banana"), makeTag(3, "Cherry")});
  manager->update(makeTag(2, "Banana"));
  EXPECT_THAT(titlesOf(manager->tags()), ElementsAre("Cherry", "Banana", "Apple"));

  manager->update(makeTag(4, "Cherry"));  // an unknown id is added; the equal title stays
  EXPECT_EQ(manager->tags(), (std::vector<Tag>{makeTag(3, "Cherry"), makeTag(4, "Cherry"),
                                               makeTag(2, "Banana"), makeTag(1, "Apple")}));
  expectFileMatches(*manager);

  manager->insert(makeTag(5, "Date"));  // ascending again, equal titles still in their order
  EXPECT_EQ(manager->tags(),
            (std::vector<Tag>{makeTag(1, "Apple"), makeTag(2, "Banana"), makeTag(3, "Cherry"),
                              makeTag(4, "Cherry"), makeTag(5, "Date")}));
  expectFileMatches(*manager);
}

TEST_F(TagsManagerTest, UpperCaseSortsBeforeLowerCase) {
  auto manager = managerWith({makeTag(1, "b"), makeTag(2, "a")});
  manager->insert(makeTag(3, "B"));
  manager->insert(makeTag(4, "A"));
  EXPECT_THAT(titlesOf(manager->tags()), ElementsAre("A", "B", "a", "b"));
  manager->update(makeTag(4, "A"));
  EXPECT_THAT(titlesOf(manager->tags()), ElementsAre("b", "a", "B", "A"));
  expectFileMatches(*manager);
}

TEST_F(TagsManagerTest, DeleteRemovesByIdAndKeepsTheOrder) {
  auto manager = managerWith({makeTag(3, "Cherry"), makeTag(1, "Apple"), makeTag(2, "Banana")});
  manager->deleteTag(makeTag(1, "a title that does not matter"));
  EXPECT_THAT(titlesOf(manager->tags()), ElementsAre("Cherry", "Banana"));
  expectFileMatches(*manager);
}

TEST_F(TagsManagerTest, DeletingAnUnknownIdChangesNothingButStillSaves) {
  TagsManager manager(locations());  // no file: the defaults
  manager.waitUntilLoaded();
  manager.deleteTag(makeTag(99, "Unknown"));
  EXPECT_EQ(manager.tags(), detail::TagsStore::defaultTags());
  expectFileMatches(manager);
}

TEST_F(TagsManagerTest, EveryChangeRemovesBothTagsOfAnIdStoredTwice) {
  const std::vector<Tag> stored{makeTag(1, "First"), makeTag(2, "Other"), makeTag(1, "Second")};
  const std::vector<std::pair<const char*, std::function<void(TagsManager&)>>> changes{
      {"insert", [](TagsManager& m) { m.insert(makeTag(1, "New")); }},
      {"update", [](TagsManager& m) { m.update(makeTag(1, "New")); }},
      {"delete", [](TagsManager& m) { m.deleteTag(makeTag(1, "First")); }},
  };
  for (const auto& [name, change] : changes) {
    SCOPED_TRACE(name);
    auto manager = managerWith(stored);
    EXPECT_EQ(manager->tags(), stored);
    EXPECT_EQ(manager->tag(idNumber(1)), makeTag(1, "Second"));  // the later one in list order
    change(*manager);
    const auto titles = titlesOf(manager->tags());
    EXPECT_THAT(titles, ::testing::Not(::testing::Contains("First")));
    EXPECT_THAT(titles, ::testing::Not(::testing::Contains("Second")));
    expectFileMatches(*manager);
  }
}

TEST_F(TagsManagerTest, LookupsGoThroughTheIndexAndSortByTitle) {
  auto manager = managerWith({makeTag(3, "Cherry"), makeTag(1, "apple"), makeTag(2, "Banana")});
  EXPECT_EQ(manager->tags(std::set<UUID>{idNumber(1), idNumber(2), idNumber(42)}),
            (std::vector<Tag>{makeTag(2, "Banana"), makeTag(1, "apple")}));
  EXPECT_THAT(manager->tags(std::set<UUID>{}), IsEmpty());
  EXPECT_FALSE(manager->tag(idNumber(42)).has_value());
  EXPECT_EQ(manager->formattedListString({idNumber(1), idNumber(2)}),
            ListFormatter{}.string({"Banana", "apple"}));
}

TEST_F(TagsManagerTest, ObserversHearOfEachStepBeforeAndAfterItHappens) {
  auto manager = managerWith({makeTag(1, "Apple"), makeTag(2, "Banana")});
  std::vector<std::vector<Tag>> published;
  std::vector<std::vector<Tag>> beforeChanges;
  auto listSubscription =
      manager->tagsPublisher().subscribe([&](const std::vector<Tag>& tags) { published.push_back(tags); });
  ASSERT_EQ(published.size(), 1U);  // the current list, inside subscribe()
  EXPECT_EQ(published[0], manager->tags());
  auto willChange = manager->objectWillChange().subscribe([&] { beforeChanges.push_back(manager->tags()); });

  manager->insert(makeTag(3, "Cherry"));  // nothing to remove, and already in order: still three steps
  EXPECT_EQ(published.size(), 4U);
  manager->update(makeTag(3, "Cherry"));
  EXPECT_EQ(published.size(), 7U);
  manager->deleteTag(makeTag(1, "Apple"));
  ASSERT_EQ(published.size(), 8U);

  const std::vector<Tag> apple{makeTag(1, "Apple")}, banana{makeTag(2, "Banana")},
      cherry{makeTag(3, "Cherry")};
  EXPECT_THAT(
      published,
      ElementsAre(std::vector<Tag>{apple[0], banana[0]}, std::vector<Tag>{apple[0], banana[0]},
                  std::vector<Tag>{apple[0], banana[0], cherry[0]},
                  std::vector<Tag>{apple[0], banana[0], cherry[0]}, std::vector<Tag>{apple[0], banana[0]},
                  std::vector<Tag>{apple[0], banana[0], cherry[0]},
                  std::vector<Tag>{cherry[0], banana[0], apple[0]}, std::vector<Tag>{cherry[0], banana[0]}));
  // Each notice of a coming change saw the list as the previous change left it.
  ASSERT_EQ(beforeChanges.size(), published.size() - 1);
  for (std::size_t i = 0; i < beforeChanges.size(); ++i) EXPECT_EQ(beforeChanges[i], published[i]) << i;
}

TEST_F(TagsManagerTest, FailedSaveIsLoggedAndTheChangeStaysInMemory) {
  fs::create_directory(tagsFile());  // nothing can be written where a folder is
  TagsManager manager(locations());
  manager.waitUntilLoaded();
  clearLogs();
  manager.insert(makeTag(1, "Kept"));
  manager.waitForPendingSaves();
  const auto errors = messages(LogLevel::error);
  ASSERT_EQ(errors.size(), 1U);
  EXPECT_THAT(errors[0], StartsWith("Failed to save tags "));
  EXPECT_THAT(errors[0], HasSubstr("Is a directory"));
  EXPECT_EQ(manager.tag(idNumber(1)), makeTag(1, "Kept"));
}

TEST_F(TagsManagerTest, DeletingEveryTagSavesAnEmptyListAndTheNextManagerGetsTheDefaults) {
  {
    auto manager = managerWith({makeTag(1, "Only")});
    manager->deleteTag(makeTag(1, "Only"));
    manager->waitForPendingSaves();
    EXPECT_EQ(fileContent(tagsFile()), "[]");
  }
  TagsManager next(locations());
  next.waitUntilLoaded();
  EXPECT_EQ(next.tags(), detail::TagsStore::defaultTags());
}

TEST_F(TagsManagerTest, DestructionWaitsForTheSaves) {
  {
    auto manager = managerWith({makeTag(1, "Apple")});
    for (int n = 2; n < 20; ++n) manager->insert(makeTag(n, "Tag " + std::to_string(n)));
  }
  EXPECT_EQ(savedTags().size(), 19U);
}

// The stored file is a pipe, so the load waits until the test writes the stored list into it: the
// insert is certainly made before the load is applied. Durable mode, so that the save replaces the pipe.
TEST_F(TagsManagerTest, ChangeMadeBeforeTheLoadIsReplayedOnTheStoredTags) {
  ASSERT_EQ(::mkfifo(tagsFile().c_str(), 0600), 0);
  TagsManager manager(locations(), StorageOptions{.durable = true});
  manager.insert(makeTag(3, "Early"));
  EXPECT_EQ(manager.tags(), std::vector<Tag>{makeTag(3, "Early")});
  EXPECT_EQ(manager.tag(idNumber(3)), makeTag(3, "Early"));

  std::ofstream(tagsFile()) << json::encode(std::vector<Tag>{makeTag(2, "Zulu"), makeTag(1, "Alpha")});
  manager.waitUntilLoaded();
  const std::vector<Tag> merged{makeTag(1, "Alpha"), makeTag(3, "Early"), makeTag(2, "Zulu")};
  EXPECT_EQ(manager.tags(), merged);
  manager.waitForPendingSaves();
  EXPECT_EQ(savedTags(), merged);
}

}  // namespace
}  // namespace cardiolith::testing
