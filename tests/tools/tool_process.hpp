#pragma once

#include <sys/types.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace cardiolith::tool::testing {

struct ToolResult {
  int exitCode = -1;  // the exit status, or 128 + signal number when a signal ended the process
  std::string out;
  std::string err;
};

// The built cardiolith tool running as a child process, with standard input from /dev/null and its
// output captured in files under `scratch`. The environment is exactly `environment`, so nothing of the
// caller's (their home, their time zone) leaks into a test.
class ToolProcess {
 public:
  ToolProcess(const std::vector<std::string>& arguments,
              const std::map<std::string, std::string>& environment, const std::filesystem::path& scratch);
  ~ToolProcess();
  ToolProcess(ToolProcess&& other) noexcept;
  ToolProcess(const ToolProcess&) = delete;
  ToolProcess& operator=(const ToolProcess&) = delete;
  ToolProcess& operator=(ToolProcess&&) = delete;

  // Waits for the process to end and returns what it wrote.
  ToolResult wait();

 private:
  pid_t pid_ = -1;
  std::filesystem::path outFile_;
  std::filesystem::path errFile_;
};

}  // namespace cardiolith::tool::testing
