// The undo history, without a subprocess: random changes taken back byte for byte, and the refusals.

#include "log/change_history.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cardiolith/platform/durable_file.hpp>
#include <map>
#include <random>

#include "../../support/temporary_directory.hpp"
#include "../../support/test_seed.hpp"
#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

using ::testing::HasSubstr;
using Files = std::map<std::string, std::optional<std::string>>;

class ChangeHistoryTest : public ::testing::Test {
 protected:
  Files contents() const {
    Files files;
    for (const auto* name : {"readings", "tags"})
      files[name] = durable_file::readIfPresent(folder_.path() / name);
    return files;
  }
  // Writes the file as a command would, and records the write in the current change.
  void write(const std::string& name, const std::string& after) {
    const auto path = folder_.path() / name;
    const auto before = durable_file::readIfPresent(path);
    durable_file::replace(path, after);
    history_.recordWrite(path, before);
  }
  // One command that writes one file.
  void change(const std::string& name, const std::string& after, const std::string& command) {
    ChangeHistory::startChange(command);
    write(name, after);
  }
  std::string undoError() {
    try {
      history_.undoLast();
    } catch (const ToolError& error) {
      return error.what();
    }
    return "no error";
  }

  cardiolith::testing::TemporaryDirectory folder_;
  ChangeHistory history_{folder_.path() / "undo-history"};
};

// A random edit of one stretch, the way adds, edits and deletes change a log: bytes inserted, removed or
// replaced anywhere, including at the ends, and sometimes the whole content.
std::string edited(const std::string& text, std::mt19937_64& random) {
  const auto pick = [&](std::size_t limit) {
    return std::uniform_int_distribution<std::size_t>(0, limit)(random);
  };
  std::string fresh(pick(40), '\0');
  for (auto& byte : fresh) byte = static_cast<char>(pick(255));
  if (pick(9) == 0) return fresh;
  const std::size_t start = pick(text.size());
  const std::size_t length = pick(text.size() - start);
  return text.substr(0, start) + fresh + text.substr(start + length);
}

TEST_F(ChangeHistoryTest, RandomChangesUndoneGiveBackTheFilesByteForByte) {
  auto random = cardiolith::testing::seededGenerator();
  for (int round = 0; round < 20; ++round) {
    const std::size_t count =
        std::uniform_int_distribution<std::size_t>(1, ChangeHistory::keptChanges)(random);
    std::vector<Files> states{contents()};
    for (std::size_t i = 0; i < count; ++i) {
      const std::string name = random() % 3 == 0 ? "tags" : "readings";
      change(name, edited(states.back()[name].value_or(""), random), "change " + std::to_string(i));
      states.push_back(contents());
    }
    for (std::size_t i = count; i-- > 0;) {
      EXPECT_EQ(history_.undoLast().commandLine, "change " + std::to_string(i));
      ASSERT_EQ(contents(), states[i]) << "round " << round << ", after undoing change " << i;
    }
  }
  EXPECT_THAT(undoError(), HasSubstr("there is nothing to undo"));
}

TEST_F(ChangeHistoryTest, WritesOfOneCommandAreUndoneTogether) {
  change("readings", "A", "first");
  ChangeHistory::startChange("both");
  for (const auto* name : {"readings", "tags", "readings"}) write(name, contents()[name].value_or("") + "+");
  ASSERT_EQ(contents(), (Files{{"readings", "A++"}, {"tags", "+"}}));
  const auto undone = history_.undoLast();
  EXPECT_EQ(undone.commandLine, "both");
  EXPECT_EQ(undone.files.size(), 2u);
  EXPECT_EQ(contents(), (Files{{"readings", "A"}, {"tags", std::nullopt}}));
}

TEST_F(ChangeHistoryTest, RefusesWhenSomethingElseChangedAFileAndKeepsOnlyTheNewestChanges) {
  change("readings", "one", "first");
  change("readings", "two", "second");
  durable_file::replace(folder_.path() / "readings", "edited by hand");
  EXPECT_THAT(undoError(), HasSubstr("can't undo \"cardiolith second\": the file " +
                                     (folder_.path() / "readings").string() + " has been changed since"));
  EXPECT_EQ(contents()["readings"], "edited by hand") << "nothing undone";

  durable_file::replace(folder_.path() / "undo-history", "cardiolith change history 1\nstep x");
  EXPECT_THAT(undoError(), HasSubstr("is damaged"));
  change("readings", "0", "a change after the damage starts a new history");
  for (std::size_t i = 1; i <= ChangeHistory::keptChanges; ++i) change("readings", std::to_string(i), "n");
  for (std::size_t i = 0; i < ChangeHistory::keptChanges; ++i) history_.undoLast();
  EXPECT_EQ(contents()["readings"], "0");
  EXPECT_THAT(undoError(), HasSubstr("there is nothing to undo"));
}

}  // namespace
}  // namespace cardiolith::tool
