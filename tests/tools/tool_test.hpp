#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "tool_process.hpp"

namespace cardiolith::tool::testing {

// Each test gets a fresh temporary folder with a home, a data folder and room for output, and runs the tool
// in the UTC time zone and the C.UTF-8 locale unless it says otherwise.
class ToolTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // Runs the tool on the test's data folder (--data-dir) and waits for it.
  ToolResult run(const std::vector<std::string>& arguments);
  // Starts the tool on the test's data folder without waiting.
  ToolProcess start(const std::vector<std::string>& arguments);
  // Runs the tool with exactly these arguments (no --data-dir) and these extra environment variables.
  ToolResult runPlain(const std::vector<std::string>& arguments,
                      const std::map<std::string, std::string>& extra = {});

  std::filesystem::path readingsFile() const { return data_ / "readings"; }
  std::filesystem::path tagsFile() const { return data_ / "tags"; }

  std::filesystem::path root_;
  std::filesystem::path data_;
  std::map<std::string, std::string> environment_;
};

std::string readFile(const std::filesystem::path& path);
void writeFile(const std::filesystem::path& path, const std::string& text);
// The lines of a text, without their line ends.
std::vector<std::string> lines(const std::string& text);

}  // namespace cardiolith::tool::testing
