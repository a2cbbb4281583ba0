#include "tool_test.hpp"

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace cardiolith::tool::testing {

void ToolTest::SetUp() {
  std::string pattern = (std::filesystem::temp_directory_path() / "cardiolith-tool-XXXXXX").string();
  ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
  root_ = pattern;
  data_ = root_ / "data";
  std::filesystem::create_directories(root_ / "home");
  environment_ = {
      {"HOME", (root_ / "home").string()}, {"TZ", "UTC"}, {"LANG", "C.UTF-8"}, {"PATH", "/usr/bin:/bin"}};
  // A sanitizer build's settings reach the tool too.
  for (const char* name : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS"}) {
    if (const char* value = std::getenv(name)) environment_[name] = value;
  }
}

void ToolTest::TearDown() { std::filesystem::remove_all(root_); }

ToolResult ToolTest::run(const std::vector<std::string>& arguments) { return start(arguments).wait(); }

ToolProcess ToolTest::start(const std::vector<std::string>& arguments) {
  std::vector<std::string> withFolder{"--data-dir", data_.string()};
  withFolder.insert(withFolder.end(), arguments.begin(), arguments.end());
  return ToolProcess(withFolder, environment_, root_);
}

ToolResult ToolTest::runPlain(const std::vector<std::string>& arguments,
                              const std::map<std::string, std::string>& extra) {
  auto environment = environment_;
  for (const auto& [name, value] : extra) environment[name] = value;
  return ToolProcess(arguments, environment, root_).wait();
}

std::string readFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

void writeFile(const std::filesystem::path& path, const std::string& text) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file << text;
}

std::vector<std::string> lines(const std::string& text) {
  std::vector<std::string> result;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) result.push_back(line);
  return result;
}

}  // namespace cardiolith::tool::testing
