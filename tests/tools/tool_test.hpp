#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "../support/temporary_directory.hpp"

namespace cardiolith::tool::testing {

using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using Arguments = std::vector<std::string>;

struct ToolResult {
  int exitCode = -1;  // the exit status, or 128 + signal number when a signal ended the process
  std::string out, err;
};

// Each test gets a fresh folder with a home, a data folder and room for output, and runs the built tool as
// a child process with standard input from /dev/null, in the UTC time zone and the C.UTF-8 locale unless it
// says otherwise. The tool's environment is exactly `environment_`, so nothing of the caller's (their home,
// their time zone) leaks into a test.
class ToolTest : public ::testing::Test {
 protected:
  ToolTest();
  // Starts every one of these runs before waiting for any, on the test's data folder (--data-dir) unless
  // `withDataDir` is false.
  std::vector<ToolResult> runAll(const std::vector<Arguments>& runs, bool withDataDir = true);
  ToolResult run(const Arguments& arguments, bool withDataDir = true) {
    return runAll({arguments}, withDataDir).front();
  }
  // The argument vector and the environment of a run, as the exec functions take them (see execPointers).
  Arguments commandLine(const Arguments& arguments, bool withDataDir = true) const;
  std::vector<std::string> environmentList() const;
  // Runs the tool, expects success and returns standard output.
  std::string succeed(const Arguments& arguments);
  // Runs the tool, expects it to refuse the request (exit status 1) and returns standard error.
  std::string refusal(const Arguments& arguments);
  // The readings of `list --json` with these options.
  nlohmann::json listed(const Arguments& options = {});

  cardiolith::testing::TemporaryDirectory folder_;
  const std::filesystem::path root_ = folder_.path(), data_ = root_ / "data";
  const std::filesystem::path readingsFile_ = data_ / "readings", tagsFile_ = data_ / "tags";
  std::map<std::string, std::string> environment_;
  std::string program_ = CARDIOLITH_TOOL_PATH;  // the file that is run
  std::optional<std::string> argv0_;            // the name it is run under, if not program_ (exec -a)
  int processes_ = 0;                           // names each run's captured output
};

// What a shell command wrote to standard output; the test fails unless it exits with status 0.
std::string shellOutput(const std::string& command);
// The text of a PDF file as poppler's pdftotext reads it, in reading order with the page's layout kept: what
// a person selecting the text would get. Fails the test when pdftotext cannot read the file.
std::string pdfText(const std::filesystem::path& pdf);
// Pointers to the texts, ending in a null pointer; valid while the texts are.
std::vector<char*> execPointers(std::vector<std::string>& texts);
std::string readFile(const std::filesystem::path& path);
void writeFile(const std::filesystem::path& path, const std::string& text);
// The lines of a text, without their line ends.
std::vector<std::string> lines(const std::string& text);
// The arguments of `first` followed by those of `more`.
Arguments joined(Arguments first, const Arguments& more);

}  // namespace cardiolith::tool::testing
