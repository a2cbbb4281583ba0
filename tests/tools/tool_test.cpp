#include "tool_test.hpp"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace cardiolith::tool::testing {

ToolTest::ToolTest() {
  std::filesystem::create_directories(root_ / "home");
  environment_ = {
      {"HOME", (root_ / "home").string()}, {"TZ", "UTC"}, {"LANG", "C.UTF-8"}, {"PATH", "/usr/bin:/bin"}};
  // A sanitizer build's settings reach the tool too.
  for (const char* name : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS"}) {
    if (const char* value = std::getenv(name)) environment_[name] = value;
  }
}

Arguments ToolTest::commandLine(const Arguments& arguments, bool withDataDir) const {
  Arguments argv{argv0_.value_or(program_)};
  if (withDataDir) argv.insert(argv.end(), {"--data-dir", data_.string()});
  argv.insert(argv.end(), arguments.begin(), arguments.end());
  return argv;
}

std::vector<std::string> ToolTest::environmentList() const {
  std::vector<std::string> envp;
  for (const auto& [name, value] : environment_) envp.push_back(name + "=" + value);
  return envp;
}

std::vector<char*> execPointers(std::vector<std::string>& texts) {
  std::vector<char*> result;
  for (auto& text : texts) result.push_back(text.data());
  result.push_back(nullptr);
  return result;
}

std::vector<ToolResult> ToolTest::runAll(const std::vector<Arguments>& runs, bool withDataDir) {
  auto envp = environmentList();
  auto envPointers = execPointers(envp);
  std::vector<std::pair<pid_t, std::string>> started;  // each run's process and the stem of its output files
  for (const auto& arguments : runs) {
    auto argv = commandLine(arguments, withDataDir);
    const std::string output = (root_ / ("process-" + std::to_string(processes_++))).string();
    const std::string out = output + ".out", err = output + ".err";
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, out.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                     0644);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, err.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                     0644);
    auto argPointers = execPointers(argv);
    pid_t pid = -1;
    const int error =
        posix_spawn(&pid, program_.c_str(), &actions, nullptr, argPointers.data(), envPointers.data());
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) throw std::runtime_error(std::string("can't start the tool: ") + std::strerror(error));
    started.emplace_back(pid, output);
  }
  std::vector<ToolResult> results;
  for (const auto& [pid, output] : started) {
    int status = 0;
    while (::waitpid(pid, &status, 0) < 0) {
      if (errno != EINTR) throw std::runtime_error(std::string("waitpid: ") + std::strerror(errno));
    }
    results.push_back({WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status),
                       readFile(output + ".out"), readFile(output + ".err")});
  }
  return results;
}

std::string ToolTest::succeed(const Arguments& arguments) {
  const auto result = run(arguments);
  EXPECT_EQ(result.exitCode, 0) << ::testing::PrintToString(arguments) << ": " << result.err;
  return result.out;
}

std::string ToolTest::refusal(const Arguments& arguments) {
  const auto result = run(arguments);
  EXPECT_EQ(result.exitCode, 1) << ::testing::PrintToString(arguments) << ": " << result.err;
  return result.err;
}

nlohmann::json ToolTest::listed(const Arguments& options) {
  return nlohmann::json::parse(succeed(joined({"list", "--json"}, options)))["readings"];
}

std::string shellOutput(const std::string& command) {
  std::string text;
  FILE* pipe = ::popen(command.c_str(), "r");
  if (!pipe) {
    ADD_FAILURE() << "can't run " << command;
    return text;
  }
  char buffer[4096];
  for (std::size_t read; (read = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) text.append(buffer, read);
  EXPECT_EQ(::pclose(pipe), 0) << command << ": " << text;
  return text;
}

std::string pdfText(const std::filesystem::path& pdf) {
  return shellOutput("pdftotext -layout '" + pdf.string() + "' - 2>&1");  // Debian package poppler-utils
}

std::string readFile(const std::filesystem::path& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
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

Arguments joined(Arguments first, const Arguments& more) {
  first.insert(first.end(), more.begin(), more.end());
  return first;
}

}  // namespace cardiolith::tool::testing
