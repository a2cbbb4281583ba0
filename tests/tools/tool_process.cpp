#include "tool_process.hpp"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace cardiolith::tool::testing {
namespace {

std::string readFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

std::filesystem::path uniqueName(const std::filesystem::path& scratch, const char* suffix) {
  static std::atomic<int> counter{0};
  return scratch / ("process-" + std::to_string(counter++) + suffix);
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
  std::vector<char*> result;
  for (auto& text : texts) result.push_back(text.data());
  result.push_back(nullptr);
  return result;
}

}  // namespace

ToolProcess::ToolProcess(const std::vector<std::string>& arguments,
                         const std::map<std::string, std::string>& environment,
                         const std::filesystem::path& scratch)
    : outFile_(uniqueName(scratch, ".out")), errFile_(uniqueName(scratch, ".err")) {
  std::vector<std::string> argv{CARDIOLITH_TOOL_PATH};
  argv.insert(argv.end(), arguments.begin(), arguments.end());
  std::vector<std::string> envp;
  for (const auto& [name, value] : environment) envp.push_back(name + "=" + value);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, outFile_.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                   0644);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, errFile_.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                   0644);
  auto argPointers = pointers(argv);
  auto envPointers = pointers(envp);
  const int error =
      posix_spawn(&pid_, argv.front().c_str(), &actions, nullptr, argPointers.data(), envPointers.data());
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) throw std::runtime_error(std::string("can't start the tool: ") + std::strerror(error));
}

ToolProcess::ToolProcess(ToolProcess&& other) noexcept
    : pid_(std::exchange(other.pid_, -1)),
      outFile_(std::move(other.outFile_)),
      errFile_(std::move(other.errFile_)) {}

ToolProcess::~ToolProcess() {
  if (pid_ > 0) wait();
}

ToolResult ToolProcess::wait() {
  int status = 0;
  while (::waitpid(pid_, &status, 0) < 0) {
    if (errno != EINTR) throw std::runtime_error(std::string("waitpid: ") + std::strerror(errno));
  }
  pid_ = -1;
  ToolResult result;
  result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  result.out = readFile(outFile_);
  result.err = readFile(errFile_);
  return result;
}

}  // namespace cardiolith::tool::testing
