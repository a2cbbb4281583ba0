#include "storage/tags_store.hpp"

#include "storage_test_support.hpp"

namespace cardiolith::testing {
namespace {

using ::testing::AllOf;
using ::testing::Each;
using ::testing::HasSubstr;
using ::testing::StartsWith;

Tag tag(std::string_view id, std::string title, std::string color) {
  return Tag{*UUID::parse(id), std::move(title), std::move(color)};
}

// Fixed on every installation, so that readings referring to a default tag resolve anywhere.
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

using TagsStoreTest = StorageTest;

// The stored list in file order, or the defaults when there is none, it is empty or it can't be decoded
// (logged, except for the empty list). A load leaves the file as it was. Which texts can't be decoded is
// the decoder's tests' and its fuzz seeds'; every decoding error takes the same way here.
TEST_F(TagsStoreTest, LoadGivesTheStoredListOrTheDefaults) {
  const std::vector<Tag> two{tag("00000000-0000-4000-8000-000000000002", "Zulu", "ffffff"),
                             tag("00000000-0000-4000-8000-000000000001", "", "")};
  struct Case {
    const char* name;
    std::optional<std::string> content;
    std::vector<Tag> expected;
    std::optional<std::string> error;  // what the logged "Unable to load tags: " message names
  };
  const Case cases[] = {
      {"no file", std::nullopt, expectedDefaults, "No such file or directory"},
      {"empty list", "[]", expectedDefaults, std::nullopt},
      {"two tags", json::encode(two), two, std::nullopt},
      {"cut short", "[{\"id\":", expectedDefaults, ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    fs::remove(tagsFile());
    if (c.content) writeWholeFile(tagsFile(), *c.content);
    clearLogs();
    const auto loaded = detail::TagsStore(locations()).load().get();
    EXPECT_EQ(loaded.tags, c.expected);
    EXPECT_EQ(loaded.unreadable, c.error && c.content);
    const auto logged = logs();
    ASSERT_EQ(logged.size(), c.error ? 1U : 0U);
    EXPECT_THAT(logged,
                Each(AllOf(StartsWith("error: Unable to load tags: "), HasSubstr(c.error.value_or("")))));
    EXPECT_EQ(fs::exists(tagsFile()) ? std::optional(readWholeFile(tagsFile())) : std::nullopt, c.content);
  }
}

TEST_F(TagsStoreTest, DefaultTitlesAreTranslatedAtEachLoad) {
  detail::TagsStore store(locations());
  StringTable::setTranslator([](std::string_view key, std::string_view) {
    return key == "Morning" ? std::optional<std::string>("Matin") : std::nullopt;
  });
  auto translated = expectedDefaults;
  translated[2].title = "Matin";
  EXPECT_EQ(store.load().get().tags, translated);
  StringTable::setTranslator(nullptr);
  EXPECT_EQ(store.load().get().tags, expectedDefaults);
}

}  // namespace
}  // namespace cardiolith::testing
