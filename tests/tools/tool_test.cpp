#include "tool_test.hpp"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace cardiolith::tool::testing {
namespace {

std::vector<char*> pointers(std::vector<std::string>& texts) {
  std::vector<char*> result;
  for (auto& text : texts) result.push_back(text.data());
  result.push_back(nullptr);
  return result;
}

}  // namespace

ToolProcess::ToolProcess(const Arguments& arguments, const std::map<std::string, std::string>& environment,
                         const std::filesystem::path& scratch) {
  static std::atomic<int> counter{0};
  output_ = scratch / ("process-" + std::to_string(counter++));
  Arguments argv{CARDIOLITH_TOOL_PATH};
  argv.insert(argv.end(), arguments.begin(), arguments.end());
  std::vector<std::string> envp;
  for (const auto& [name, value] : environment) envp.push_back(name + "=" + value);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  const std::string out = output_.string() + ".out", err = output_.string() + ".err";
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  auto argPointers = pointers(argv);
  auto envPointers = pointers(envp);
  const int error =
      posix_spawn(&pid_, argv.front().c_str(), &actions, nullptr, argPointers.data(), envPointers.data());
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) throw std::runtime_error(std::string("can't start the tool: ") + std::strerror(error));
}

ToolProcess::ToolProcess(ToolProcess&& other) noexcept
    : pid_(std::exchange(other.pid_, -1)), output_(std::move(other.output_)) {}

ToolProcess::~ToolProcess() {
  if (pid_ > 0) wait();
}

ToolResult ToolProcess::wait() {
  int status = 0;
  while (::waitpid(pid_, &status, 0) < 0) {
    if (errno != EINTR) throw std::runtime_error(std::string("waitpid: ") + std::strerror(errno));
  }
  pid_ = -1;
  return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status),
          readFile(output_.string() + ".out"), readFile(output_.string() + ".err")};
}

ToolTest::ToolTest() {
  std::filesystem::create_directories(root_ / "home");
  environment_ = {
      {"HOME", (root_ / "home").string()}, {"TZ", "UTC"}, {"LANG", "C.UTF-8"}, {"PATH", "/usr/bin:/bin"}};
  // A sanitizer build's settings reach the tool too.
  for (const char* name : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS"}) {
    if (const char* value = std::getenv(name)) environment_[name] = value;
  }
}

std::string ToolTest::succeed(const Arguments& arguments) {
  const auto result = run(arguments);
  EXPECT_EQ(result.exitCode, 0) << ::testing::PrintToString(arguments) << ": " << result.err;
  return result.out;
}

ToolProcess ToolTest::start(const Arguments& arguments) {
  Arguments withFolder{"--data-dir", data_.string()};
  withFolder.insert(withFolder.end(), arguments.begin(), arguments.end());
  return ToolProcess(withFolder, environment_, root_);
}

nlohmann::json ToolTest::listed(const Arguments& options) {
  Arguments arguments{"list", "--json"};
  arguments.insert(arguments.end(), options.begin(), options.end());
  return nlohmann::json::parse(succeed(arguments))["readings"];
}

std::string readFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

void writeFile(const std::filesystem::path& path, const std::string& text) {
  std::filesystem::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << text;
}

std::vector<std::string> lines(const std::string& text) {
  std::vector<std::string> result;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) result.push_back(line);
  return result;
}

}  // namespace cardiolith::tool::testing
