#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <limits>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "cardiolith/model/reading.hpp"
#include "cardiolith/platform/date_formatter.hpp"
#include "cardiolith/platform/list_formatter.hpp"
#include "cardiolith/sample/lorem.hpp"
#include "cardiolith/storage/tags_manager.hpp"
#include "support/temporary_directory.hpp"

namespace cardiolith {
namespace {

// Gives a fixed text and remembers the instants it was asked for.
class FakeDateFormatter : public DateFormatter {
 public:
  explicit FakeDateFormatter(std::string text) : DateFormatter("yyyy"), text_(std::move(text)) {}
  std::string string(Date date) const override {
    dates.push_back(date);
    return text_;
  }
  mutable std::vector<Date> dates;

 private:
  std::string text_;
};

// Gives a fixed result, or nothing, and remembers the items of every call.
class FakeListFormatter : public ListFormatter {
 public:
  explicit FakeListFormatter(std::optional<std::string> result) : result_(std::move(result)) {}
  std::optional<std::string> string(const std::vector<std::string>& items) const override {
    calls.push_back(items);
    return result_;
  }
  mutable std::vector<std::vector<std::string>> calls;

 private:
  std::optional<std::string> result_;
};

// A tags manager over a temporary container, loaded, with two tags of its own besides the defaults.
class ReadingTextExportTest : public ::testing::Test {
 protected:
  ReadingTextExportTest() {
    manager_.waitUntilLoaded();
    manager_.insert(zeta_);
    manager_.insert(alpha_);
  }

  enum class Tags { absent, empty, knownAndUnknown, unknownOnly };

  std::optional<std::set<UUID>> tagIDs(Tags tags) const {
    switch (tags) {
      case Tags::absent:
        return std::nullopt;
      case Tags::empty:
        return std::set<UUID>{};
      case Tags::knownAndUnknown:
        return std::set<UUID>{zeta_.id, unknown_, alpha_.id};
      case Tags::unknownOnly:
        return std::set<UUID>{unknown_};
    }
    return std::nullopt;
  }

  // Decoded, so that empty notes stay empty rather than becoming absent.
  std::shared_ptr<Reading> reading(std::optional<std::string> notes, Tags tags, std::int64_t systolic = 120,
                                   std::int64_t diastolic = 80, std::int64_t pulse = 70) const {
    return Reading::decoded("id", date_, systolic, diastolic, pulse, std::move(notes), tagIDs(tags),
                            std::nullopt);
  }

  const Date date_{760'000'000};
  const Tag zeta_{UUID::random(), "Zeta walk", "ff0000"};
  const Tag alpha_{UUID::random(), "Alpha coffee", "00ff00"};
  const UUID unknown_ = UUID::random();
  testing::TemporaryDirectory container_;
  TagsManager manager_{withEmptyTagList(container_.path())};

 private:
  // An empty stored list: the manager starts from the default tags without logging a missing file.
  static StorageLocations withEmptyTagList(const std::filesystem::path& container) {
    std::ofstream(container / "tags") << "[]";
    return StorageLocations{container, {}};
  }
};

using Cells = std::vector<std::string>;
using Calls = std::vector<std::vector<std::string>>;
constexpr std::int64_t kInt64Min = std::numeric_limits<std::int64_t>::min();

TEST_F(ReadingTextExportTest, CellsAreAppendedInOrder) {
  struct Case {
    const char* name;
    std::optional<std::string> notes;
    Tags tags;
    bool includeTags;
    bool includeNotes;
    std::optional<std::string> listText;
    Cells cells;
    Calls listCalls;
  };
  const Calls titles{{"Alpha coffee", "Zeta walk"}};  // by title; the unknown id gives nothing
  const Case cases[] = {
      {"no tags, no notes", std::nullopt, Tags::absent, true, true, "L", {"D", "120", "80", "70"}, {}},
      {"tags and notes",
       "felt fine",
       Tags::knownAndUnknown,
       true,
       true,
       "L",
       {"D", "120", "80", "70", "L", "felt fine"},
       titles},
      {"tags excluded",
       "felt fine",
       Tags::knownAndUnknown,
       false,
       true,
       "L",
       {"D", "120", "80", "70", "felt fine"},
       {}},
      {"notes excluded",
       "felt fine",
       Tags::knownAndUnknown,
       true,
       false,
       "L",
       {"D", "120", "80", "70", "L"},
       titles},
      {"both excluded", "felt fine", Tags::knownAndUnknown, false, false, "L", {"D", "120", "80", "70"}, {}},
      {"empty tag set still asks the formatter",
       "n",
       Tags::empty,
       true,
       true,
       "",
       {"D", "120", "80", "70", "", "n"},
       {{}}},
      {"unknown ids only",
       std::nullopt,
       Tags::unknownOnly,
       true,
       true,
       "none",
       {"D", "120", "80", "70", "none"},
       {{}}},
      {"formatter gives nothing",
       "n",
       Tags::knownAndUnknown,
       true,
       true,
       std::nullopt,
       {"D", "120", "80", "70", "n"},
       titles},
      {"empty notes kept", "", Tags::absent, true, true, "L", {"D", "120", "80", "70", ""}, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const FakeDateFormatter dates("D");
    const FakeListFormatter lists(c.listText);
    EXPECT_EQ(reading(c.notes, c.tags)->inArrayFormat(dates, lists, manager_, c.includeTags, c.includeNotes),
              c.cells);
    EXPECT_EQ(lists.calls, c.listCalls);
    EXPECT_EQ(dates.dates, std::vector<Date>{date_});
  }
}

TEST_F(ReadingTextExportTest, ValuesAreWrittenAsStored) {
  const FakeDateFormatter dates("D");
  const FakeListFormatter lists("L");
  EXPECT_EQ(reading(std::nullopt, Tags::absent, 0, -5, kInt64Min)
                ->inArrayFormat(dates, lists, manager_, true, true),
            (Cells{"D", "0", "-5", "-9223372036854775808"}));
  EXPECT_EQ(Reading::allHeadings.size(), 5u);
}

TEST_F(ReadingTextExportTest, LinesReplaceTheSeparatorInEveryCell) {
  struct Case {
    const char* name;
    std::string dateText;
    std::optional<std::string> notes;
    std::string separator;
    std::string line;
  };
  const Case cases[] = {
      {"comma in the date, the tags and the notes", "Mar 1, 2025", "a,b", ",",
       "Mar 1  2025,120,80,70,Alpha coffee  Zeta walk,a b"},
      {"empty notes end the line with the separator", "D", "", ",", "D,120,80,70,Alpha coffee  Zeta walk,"},
      {"no notes", "D", std::nullopt, ";", "D;120;80;70;Alpha coffee, Zeta walk"},
      // One pass, left to right, matches not overlapping.
      {"multi-character separator", "D", "a---b----c", "--",
       "D--120--80--70--Alpha coffee, Zeta walk--a -b  c"},
      // Replaced text is not searched again.
      {"separator of two spaces", "D", "x    y", "  ", "D  120  80  70  Alpha coffee, Zeta walk  x  y"},
      {"digits are cells too", "D", "n", "0", "D012 08 07 0Alpha coffee, Zeta walk0n"},
      {"case-sensitive", "D", "x X", "X", "DX120X80X70XAlpha coffee, Zeta walkXx  "},
      {"multi-byte separator", "D", "a\u00b7b", "\u00b7",
       "D\u00b7120\u00b780\u00b770\u00b7Alpha coffee, Zeta walk\u00b7a b"},
      // An empty separator matches nothing: the cells are kept and simply run together.
      {"empty separator", "D,", "a b", "", "D,1208070Alpha coffee, Zeta walka b"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const FakeDateFormatter dates(c.dateText);
    const FakeListFormatter lists("Alpha coffee, Zeta walk");
    EXPECT_EQ(reading(c.notes, Tags::knownAndUnknown)
                  ->inLineFormat(dates, lists, manager_, c.separator, true, true),
              c.line);
  }
}

std::string runPython(const std::string& command) {
  std::string output;
  FILE* pipe = ::popen(command.c_str(), "r");
  if (pipe == nullptr) return "popen failed";
  char buffer[256];
  while (std::fgets(buffer, sizeof buffer, pipe) != nullptr) output += buffer;
  const int status = ::pclose(pipe);
  return status == 0 ? output : output + " (exit status " + std::to_string(status) + ")";
}

// Commas in dates, tag lists and notes become spaces, so a comma-separated export of many readings reads
// back through a real CSV parser with one column per cell in every row.
TEST_F(ReadingTextExportTest, CommaSeparatedLinesReadBackAsCSV) {
  constexpr int kRows = 300;
  const DateFormatter dates("MMM d, yyyy 'at' HH:mm", "en_US", "UTC");
  const ListFormatter lists("en_US");
  const std::vector<Tag> tags = manager_.tags();
  ASSERT_GE(tags.size(), 3u);

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
                           "print(len(rows), widths)\n";
  EXPECT_EQ(runPython("python3 " + script.string() + " " + csv.string()), std::to_string(kRows) + " [6]\n");
}

}  // namespace
}  // namespace cardiolith
