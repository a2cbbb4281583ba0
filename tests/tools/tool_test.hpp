#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/types.h>

#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "../support/temporary_directory.hpp"

namespace cardiolith::tool::testing {

using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using ::testing::Not;
using Arguments = std::vector<std::string>;

struct ToolResult {
  int exitCode = -1;  // the exit status, or 128 + signal number when a signal ended the process
  std::string out;
  std::string err;
};

// The built tool running as a child process, with standard input from /dev/null and its output captured
// in files under `scratch`. The environment is exactly `environment`, so nothing of the caller's (their
// home, their time zone) leaks into a test.
class ToolProcess {
 public:
  ToolProcess(const Arguments& arguments, const std::map<std::string, std::string>& environment,
              const std::filesystem::path& scratch);
  ToolProcess(ToolProcess&& other) noexcept;
  ~ToolProcess();
  ToolResult wait();

 private:
  pid_t pid_ = -1;
  std::filesystem::path output_;  // the captured streams are output_ + ".out" and + ".err"
};

// Each test gets a fresh folder with a home, a data folder and room for output, and runs the tool in the
// UTC time zone and the C.UTF-8 locale unless it says otherwise.
class ToolTest : public ::testing::Test {
 protected:
  ToolTest();

  // Runs the tool on the test's data folder (--data-dir) and waits for it.
  ToolResult run(const Arguments& arguments) { return start(arguments).wait(); }
  // Runs it and expects success.
  std::string succeed(const Arguments& arguments);
  // Starts the tool on the test's data folder without waiting.
  ToolProcess start(const Arguments& arguments);
  // Runs the tool with exactly these arguments, without --data-dir.
  ToolResult runPlain(const Arguments& arguments) {
    return ToolProcess(arguments, environment_, root_).wait();
  }
  // The readings of `list --json` with these options.
  nlohmann::json listed(const Arguments& options = {});

  cardiolith::testing::TemporaryDirectory folder_;
  const std::filesystem::path root_ = folder_.path();
  const std::filesystem::path data_ = root_ / "data";
  const std::filesystem::path readingsFile_ = data_ / "readings";
  const std::filesystem::path tagsFile_ = data_ / "tags";
  std::map<std::string, std::string> environment_;
};

std::string readFile(const std::filesystem::path& path);
void writeFile(const std::filesystem::path& path, const std::string& text);
// The lines of a text, without their line ends.
std::vector<std::string> lines(const std::string& text);

}  // namespace cardiolith::tool::testing
