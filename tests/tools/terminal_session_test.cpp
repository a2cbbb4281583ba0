// The tool on a real terminal (a pseudo-terminal of a given width) against the same tool piped: colour
// and shortened lines only on the terminal, and never colour under NO_COLOR or --color never.

#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <regex>

#include "tool_test.hpp"

namespace cardiolith::tool::testing {
namespace {

using ::testing::Not;

class TerminalSessionTest : public ToolTest {
 protected:
  TerminalSessionTest() {
    succeed({"add", "185/95/80", "--note", std::string(120, 'n')});
    succeed({"add", "118/76/60", "--note", "short"});
    succeed({"add", "85/70/60"});  // outside the category table: explained below the table
  }

  // Runs the tool on a pseudo-terminal `columns` wide and returns what it showed.
  std::string onTerminal(const Arguments& arguments, unsigned short columns = 80) {
    auto argv = commandLine(arguments), envp = environmentList();
    auto args = execPointers(argv), env = execPointers(envp);
    struct winsize size {};
    size.ws_row = 40;
    size.ws_col = columns;
    int terminal = -1;
    const pid_t pid = ::forkpty(&terminal, nullptr, nullptr, &size);
    if (pid == 0) {
      ::execve(program_.c_str(), args.data(), env.data());
      ::_exit(127);
    }
    EXPECT_GT(pid, 0);
    std::string shown;
    char buffer[4096];
    for (;;) {
      const ssize_t got = ::read(terminal, buffer, sizeof buffer);
      if (got > 0) {
        shown.append(buffer, static_cast<std::size_t>(got));
      } else if (got < 0 && errno == EINTR) {
        continue;
      } else {
        break;  // EIO once the tool has exited and closed its side
      }
    }
    ::close(terminal);
    int status = 0;
    ::waitpid(pid, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << shown;
    return shown;
  }
};

TEST_F(TerminalSessionTest, ColourOnlyOnATerminalThatWantsIt) {
  const std::string red = "\x1b[1;31mVery high";
  EXPECT_THAT(onTerminal({"list"}), HasSubstr(red));
  EXPECT_THAT(succeed({"list"}), Not(HasSubstr("\x1b[")));  // piped
  EXPECT_THAT(succeed({"--color", "always", "list"}), HasSubstr(red));
  environment_["NO_COLOR"] = "1";
  EXPECT_THAT(onTerminal({"list"}), Not(HasSubstr("\x1b[")));
}

TEST_F(TerminalSessionTest, ListFitsTheTerminalUnlessWide) {
  const auto shown = onTerminal({"--color", "never", "list"}, 70);
  for (const auto& line : lines(shown))  // counted in characters: continuation bytes left out
    EXPECT_LE(std::regex_replace(line, std::regex("[\\x80-\\xbf\\r]"), "").size(), 70u) << line;
  EXPECT_THAT(shown, HasSubstr("nnn\u2026"));
  EXPECT_THAT(shown, HasSubstr("85/70 mmHg: No category"));
  EXPECT_THAT(onTerminal({"--color", "never", "list", "--wide"}, 70), HasSubstr(std::string(120, 'n')));
  EXPECT_THAT(succeed({"list"}), HasSubstr(std::string(120, 'n')));  // piped: whole
}

TEST_F(TerminalSessionTest, ImportShowsItsProgressOnlyOnATerminal) {
  const std::string rows = (root_ / "rows.csv").string();
  writeFile(rows, "Date,Systolic,Diastolic,Pulse\n2025-01-12 08:12,128,82,71\n");
  const std::string bar = "Reading rows.csv [" + std::string(30, '#') + "] 100%";
  // A quick import shows no bar: it would only flicker.
  EXPECT_THAT(onTerminal({"import", rows, "--dry-run"}), Not(HasSubstr("Reading rows.csv")));
  environment_["CARDIOLITH_PROGRESS_DELAY_MS"] = "0";  // as if the import had taken more than a second
  EXPECT_THAT(onTerminal({"import", rows, "--dry-run"}), HasSubstr(bar));
  const auto piped = run({"import", rows, "--dry-run"});
  EXPECT_EQ(piped.exitCode, 0);
  EXPECT_EQ(piped.err, "");
}

}  // namespace
}  // namespace cardiolith::tool::testing
