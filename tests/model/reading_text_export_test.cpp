#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <limits>

#include "cardiolith/model/reading.hpp"
#include "cardiolith/platform/date_formatter.hpp"
#include "cardiolith/platform/list_formatter.hpp"
#include "cardiolith/sample/lorem.hpp"
#include "cardiolith/storage/tags_manager.hpp"
#include "support/temporary_directory.hpp"

namespace cardiolith {
namespace {

using Cells = std::vector<std::string>;

// Gives a fixed result, or nothing, and remembers the items of every call.
struct FakeListFormatter : ListFormatter {
  explicit FakeListFormatter(std::optional<std::string> result) : result(std::move(result)) {}
  std::optional<std::string> string(const std::vector<std::string>& items) const override {
    calls.push_back(items);
    return result;
  }
  std::optional<std::string> result;
  mutable std::vector<Cells> calls;
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
  const UUID unknown_ = UUID::random();
  const std::set<UUID> mixed_{zeta_.id, unknown_, alpha_.id};
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
    bool includeTags, includeNotes;
    std::optional<std::string> listText;
    Cells tail;  // after the date, systolic, diastolic and pulse cells
    std::vector<Cells> listCalls;
  };
  const std::vector<Cells> titles{{"Alpha coffee", "Zeta walk"}};  // by title; the unknown id gives nothing
  const Case cases[] = {
      {"no tags, no notes", {}, {}, true, true, "L", {}, {}},
      {"tags and notes", "n", mixed_, true, true, "L", {"L", "n"}, titles},
      {"tags excluded", "n", mixed_, false, true, "L", {"n"}, {}},
      {"notes excluded", "n", mixed_, true, false, "L", {"L"}, titles},
      {"both excluded", "n", mixed_, false, false, "L", {}, {}},
      {"an empty tag set still asks the formatter", "n", std::set<UUID>{}, true, true, "", {"", "n"}, {{}}},
      {"unknown ids only", {}, std::set{unknown_}, true, true, "none", {"none"}, {{}}},
      {"the formatter gives nothing", "n", mixed_, true, true, std::nullopt, {"n"}, titles},
      {"empty notes are kept", "", {}, true, true, "L", {""}, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const FakeListFormatter lists(c.listText);
    Cells cells{"Jan 31, 2025", "120", "80", "70"};
    cells.insert(cells.end(), c.tail.begin(), c.tail.end());
    EXPECT_EQ(reading(c.notes, c.tags)->inArrayFormat(dates_, lists, manager_, c.includeTags, c.includeNotes),
              cells);
    EXPECT_EQ(lists.calls, c.listCalls);
  }
  EXPECT_EQ(Reading::decoded("id", date_, 0, -5, std::numeric_limits<std::int64_t>::min(), {}, {}, {})
                ->inArrayFormat(dates_, FakeListFormatter("L"), manager_, true, true),
            (Cells{"Jan 31, 2025", "0", "-5", "-9223372036854775808"}));
}

TEST_F(ReadingTextExportTest, LinesReplaceTheSeparatorInEveryCell) {
  struct Case {
    const char* name;
    std::optional<std::string> notes;
    std::string separator;
    std::string line;
  };
  const Case cases[] = {
      {"commas in every text cell", "a,b", ",", "Jan 31  2025,120,80,70,Alpha coffee  Zeta walk,a b"},
      {"empty notes end the line", "", ",", "Jan 31  2025,120,80,70,Alpha coffee  Zeta walk,"},
      {"no notes", std::nullopt, ";", "Jan 31, 2025;120;80;70;Alpha coffee, Zeta walk"},
      // One pass, left to right, matches not overlapping.
      {"two characters", "a---b----c", "--", "Jan 31, 2025--120--80--70--Alpha coffee, Zeta walk--a -b  c"},
      // Replaced text is not searched again.
      {"separator of two spaces", "x    y", "  ", "Jan 31, 2025  120  80  70  Alpha coffee, Zeta walk  x  y"},
      {"digits are cells too", "n", "0", "Jan 31, 2 25012 08 07 0Alpha coffee, Zeta walk0n"},
      {"case-sensitive", "x X", "X", "Jan 31, 2025X120X80X70XAlpha coffee, Zeta walkXx  "},
      {"multi-byte separator", "a\u00b7b", "\u00b7",
       "Jan 31, 2025\u00b7120\u00b780\u00b770\u00b7Alpha coffee, Zeta walk\u00b7a b"},
      // An empty separator matches nothing: the cells are kept and simply run together.
      {"empty separator", "a b", "", "Jan 31, 20251208070Alpha coffee, Zeta walka b"},
  };
  const FakeListFormatter lists("Alpha coffee, Zeta walk");
  for (const auto& c : cases) {
    EXPECT_EQ(reading(c.notes, mixed_)->inLineFormat(dates_, lists, manager_, c.separator, true, true),
              c.line)
        << c.name;
  }
}

// Commas in dates, tag lists and notes become spaces, so a comma-separated export of many readings reads
// back through a real CSV parser with one column per cell in every row.
TEST_F(ReadingTextExportTest, CommaSeparatedLinesReadBackAsCSV) {
  constexpr int kRows = 300;
  const DateFormatter dates("MMM d, yyyy 'at' HH:mm", "en_US", "UTC");
  const ListFormatter lists("en_US");
  const std::vector<Tag> tags = manager_.tags();
  const auto csv = container_.path() / "export.csv";
  {
    std::ofstream out(csv);
    for (int i = 0; i < kRows; ++i) {
      std::set<UUID> tagIDs;
      for (std::size_t t = 0; t < tags.size(); ++t) {
        if ((i >> (t % 4)) & 1) tagIDs.insert(tags[t].id);
      }
      const std::string notes = Lorem::words(ClosedRange{1, 4}) + ", " + Lorem::sentence() + ",," +
                                Lorem::words(ClosedRange{0, 2}) + ",";
      const Reading reading(UUID::random().uuidString(), Date(760'000'000.0 + 3600.0 * i), 100 + i % 50,
                            60 + i % 30, 50 + i % 40, notes, std::nullopt, tagIDs);
      out << reading.inLineFormat(dates, lists, manager_, ",", true, true) << "\n";
    }
  }

  const auto script = container_.path() / "check.py";
  std::ofstream(script) << "import csv, sys\n"
                           "rows = list(csv.reader(open(sys.argv[1], newline='')))\n"
                           "widths = sorted({len(row) for row in rows})\n"
                           "if (len(rows), widths) != ("
                        << kRows << ", [6]): sys.exit(f'{len(rows)} rows of {widths} cells')\n";
  EXPECT_EQ(std::system(("python3 " + script.string() + " " + csv.string()).c_str()), 0);
}

}  // namespace
}  // namespace cardiolith
