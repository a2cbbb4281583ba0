#include <gtest/gtest.h>

#include <fstream>
#include <limits>
#include <tuple>

#include "cardiolith/model/reading.hpp"
#include "cardiolith/platform/date_formatter.hpp"
#include "cardiolith/platform/list_formatter.hpp"
#include "cardiolith/storage/tags_manager.hpp"
#include "support/temporary_directory.hpp"

namespace cardiolith {
namespace {

using Cells = std::vector<std::string>;

// Joins the items with ", ", or gives nothing when made to.
struct FakeListFormatter : ListFormatter {
  explicit FakeListFormatter(bool nothing = false) : givesNothing(nothing) {}
  std::optional<std::string> string(const std::vector<std::string>& items) const override {
    std::string list;
    for (const auto& item : items) list += (list.empty() ? "" : ", ") + item;
    return givesNothing ? std::nullopt : std::optional(list);
  }
  bool givesNothing;
};

// A loaded tags manager over a temporary container that holds two tags of its own besides the defaults.
class ReadingTextExportTest : public ::testing::Test {
 protected:
  ReadingTextExportTest() {
    manager_.waitUntilLoaded();
    manager_.insert(zeta_);
    manager_.insert(alpha_);
  }

  // Decoded, so that empty notes stay empty rather than becoming absent.
  std::shared_ptr<Reading> reading(std::optional<std::string> notes,
                                   std::optional<std::set<UUID>> tags) const {
    return Reading::decoded("id", date_, 120, 80, 70, std::move(notes), std::move(tags), std::nullopt);
  }

  const Date date_{760'000'000};
  const DateFormatter dates_{"MMM d, yyyy", "en_US_POSIX", "UTC"};  // "Jan 31, 2025" for date_
  const Tag zeta_{UUID::random(), "Zeta walk", "ff0000"};
  const Tag alpha_{UUID::random(), "Alpha coffee", "00ff00"};
  const std::set<UUID> mixed_{zeta_.id, UUID::random(), alpha_.id};  // the middle id is no tag's
  testing::TemporaryDirectory container_;
  // An empty stored list: the manager starts from the default tags without logging a missing file.
  TagsManager manager_{[this] {
    std::ofstream(container_.path() / "tags") << "[]";
    return StorageLocations{container_.path(), {}};
  }()};
};

TEST_F(ReadingTextExportTest, CellsAreAppendedInOrder) {
  struct Case {
    const char* name;
    std::optional<std::string> notes;
    std::optional<std::set<UUID>> tags;
    bool includeTags, includeNotes, listGivesNothing;
    Cells tail;  // after the date, systolic, diastolic and pulse cells
  };
  const std::string titles = "Alpha coffee, Zeta walk";  // by title; the unknown id gives nothing
  const Case cases[] = {
      {"no tags, no notes", {}, {}, true, true, false, {}},
      {"tags and notes", "n", mixed_, true, true, false, {titles, "n"}},
      {"tags excluded", "n", mixed_, false, true, false, {"n"}},
      {"notes excluded", "n", mixed_, true, false, false, {titles}},
      {"an empty tag set still asks the formatter", "n", std::set<UUID>{}, true, true, false, {"", "n"}},
      {"the formatter gives nothing", "n", mixed_, true, true, true, {"n"}},
      {"empty notes are kept", "", {}, true, true, false, {""}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const FakeListFormatter lists(c.listGivesNothing);
    Cells cells{"Jan 31, 2025", "120", "80", "70"};
    cells.insert(cells.end(), c.tail.begin(), c.tail.end());
    EXPECT_EQ(reading(c.notes, c.tags)->inArrayFormat(dates_, lists, manager_, c.includeTags, c.includeNotes),
              cells);
  }
  EXPECT_EQ(Reading::decoded("id", date_, 0, -5, std::numeric_limits<std::int64_t>::min(), {}, {}, {})
                ->inArrayFormat(dates_, FakeListFormatter(), manager_, true, true),
            (Cells{"Jan 31, 2025", "0", "-5", "-9223372036854775808"}));
}

TEST_F(ReadingTextExportTest, LinesReplaceTheSeparatorInEveryCell) {
  const std::tuple<std::optional<std::string>, std::string, std::string> cases[] = {
      {"a,b", ",", "Jan 31  2025,120,80,70,Alpha coffee  Zeta walk,a b"},  // in every text cell
      {"", ",", "Jan 31  2025,120,80,70,Alpha coffee  Zeta walk,"},        // empty notes end the line
      // Replaced text is not searched again.
      {"x    y", "  ", "Jan 31, 2025  120  80  70  Alpha coffee, Zeta walk  x  y"},
      {"n", "0", "Jan 31, 2 25012 08 07 0Alpha coffee, Zeta walk0n"},  // the numbers are cells too
      // Canonically equivalent forms of the separator are replaced too.
      {"caf\u0065\u0301 ok", "\u00E9",
       "Jan 31, 2025\u00E9120\u00E980\u00E970\u00E9Alpha coffee, Zeta walk\u00E9caf  ok"},
  };
  const FakeListFormatter lists;
  for (const auto& [notes, separator, line] : cases)
    EXPECT_EQ(reading(notes, mixed_)->inLineFormat(dates_, lists, manager_, separator, true, true), line);
  // A line leaves tags out as asked, as a row of cells does.
  EXPECT_EQ(reading("n", mixed_)->inLineFormat(dates_, lists, manager_, ";", false, true),
            "Jan 31, 2025;120;80;70;n");
}

}  // namespace
}  // namespace cardiolith
