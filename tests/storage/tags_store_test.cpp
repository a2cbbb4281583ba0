#include "storage/tags_store.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "storage_test_support.hpp"

namespace cardiolith::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

Tag tag(std::string_view id, std::string title, std::string color) {
  return Tag{*UUID::parse(id), std::move(title), std::move(color)};
}

const std::vector<Tag> expectedDefaults{
    tag("96FEBCCC-8368-4D94-B24B-495782725DF5", "Left arm", "007aff"),
    tag("5E2F527F-0851-42F4-A3E9-218A60A6C599", "Right arm", "ff3b30"),
    tag("45738A4A-865F-4470-8A22-2081AD989F44", "Morning", "af52de"),
    tag("39A7610C-C9AD-4C87-BDA0-FD77026538A7", "Afternoon", "32ade6"),
    tag("6353FCF5-4C18-4E3F-BB45-579D22FF2E15", "Evening", "34c759"),
    tag("6893BC1C-FEE0-4A51-A08F-C2D9D503A038", "Standing", "5856d6"),
    tag("5D26EFB8-C397-48B5-AD44-A8844905B79C", "Sitting", "ff9500"),
    tag("A5994EAE-1FF2-4416-8A59-CB85BEF0B33B", "After medication", "00c7be"),
    tag("13352195-20A1-4CD9-AF81-D51A82278414", "Before medication", "ff2d55"),
    tag("CAC1A117-8703-46E4-B6E4-943E971EFB0D", "Without medication", "30b0c7"),
};

class TagsStoreTest : public StorageTest {
 protected:
  fs::path tagsFile() const { return container() / "tags"; }
};

TEST_F(TagsStoreTest, NoFileGivesTheDefaultTagsWithAnErrorAndCreatesNoFile) {
  detail::TagsStore store(locations());
  EXPECT_EQ(store.load().get(), expectedDefaults);
  const auto errors = messages(LogLevel::error);
  ASSERT_EQ(errors.size(), 1U);
  EXPECT_THAT(errors[0], StartsWith("Unable to load tags: "));
  EXPECT_THAT(errors[0], HasSubstr("No such file or directory"));
  EXPECT_FALSE(fs::exists(tagsFile()));
}

TEST_F(TagsStoreTest, EmptyArrayGivesTheDefaultTagsSilently) {
  writeFile(tagsFile(), "[]");
  detail::TagsStore store(locations());
  EXPECT_EQ(store.load().get(), expectedDefaults);
  EXPECT_THAT(logs(), IsEmpty());
}

TEST_F(TagsStoreTest, StoredTagsComeBackExactlyInFileOrder) {
  const std::vector<Tag> stored{tag("00000000-0000-4000-8000-000000000002", "Zulu", "ffffff"),
                                tag("00000000-0000-4000-8000-000000000001", "", "")};
  writeFile(tagsFile(), json::encode(stored));
  detail::TagsStore store(locations());
  EXPECT_EQ(store.load().get(), stored);
  EXPECT_THAT(logs(), IsEmpty());
}

TEST_F(TagsStoreTest, UndecodableFilesGiveTheDefaultsWithAnErrorAndStayAsTheyWere) {
  for (const std::string& content :
       {std::string("[{\"id\":"),
        std::string(R"([{"id":"45738A4A-865F-4470-8A22-2081AD989F44","title":"x"}])"),
        std::string(R"({"tags":[]})")}) {
    SCOPED_TRACE(content);
    clearLogs();
    writeFile(tagsFile(), content);
    detail::TagsStore store(locations());
    EXPECT_EQ(store.load().get(), expectedDefaults);
    const auto errors = messages(LogLevel::error);
    ASSERT_EQ(errors.size(), 1U);
    EXPECT_THAT(errors[0], StartsWith("Unable to load tags: "));
    EXPECT_EQ(fileContent(tagsFile()), content);
  }
}

TEST_F(TagsStoreTest, SaveWritesTheEncodedListAndAnEmptyListLoadsAsTheDefaults) {
  detail::TagsStore store(locations());
  const std::vector<Tag> two{expectedDefaults[3], expectedDefaults[0]};
  store.save(two).get();
  EXPECT_EQ(fileContent(tagsFile()), json::encode(two));
  EXPECT_EQ(store.load().get(), two);

  store.save({}).get();
  EXPECT_EQ(fileContent(tagsFile()), "[]");
  EXPECT_EQ(store.load().get(), expectedDefaults);
  EXPECT_THAT(logs(), IsEmpty());
}

TEST_F(TagsStoreTest, DefaultTitlesComeFromTheStringTableAtLoadTime) {
  StringTable::setTranslator([](std::string_view key, std::string_view) -> std::optional<std::string> {
    if (key == "Morning") return "Matin";
    return std::nullopt;
  });
  detail::TagsStore store(locations());
  auto translated = expectedDefaults;
  translated[2].title = "Matin";
  EXPECT_EQ(store.load().get(), translated);

  StringTable::setTranslator(nullptr);
  EXPECT_EQ(store.load().get(), expectedDefaults);
}

using TagsStoreDeathTest = TagsStoreTest;

TEST_F(TagsStoreDeathTest, MissingSharedContainerStopsTheProcess) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(detail::TagsStore(StorageLocations{std::nullopt, {documents()}}),
               "Can't find documents directory");
}

}  // namespace
}  // namespace cardiolith::testing
