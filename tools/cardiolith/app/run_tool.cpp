#include "app/run_tool.hpp"

#include <CLI/CLI.hpp>
#include <cardiolith/platform/process_info.hpp>
#include <exception>
#include <iostream>
#include <string>
#include <string_view>

#include "app/completion.hpp"
#include "app/usage_error.hpp"
#include "app/version.hpp"
#include "commands/commands.hpp"
#include "global_options.hpp"
#include "input/decimal_options.hpp"
#include "log/change_history.hpp"
#include "log/library_log.hpp"
#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

constexpr int usageError = 2;

int parseAndRun(int argc, char** argv) {
  // The library reads launch arguments for itself, and "DELETE_ALL_RECORDS" among them empties the log.
  // Neither a note nor the name the tool was started under (a link, exec -a) is a launch argument: the
  // library sees a fixed program name only.
  cardiolith::ProcessInfo::setArguments({"cardiolith"});
  LibraryLog::install();
  ChangeHistory::startChange(retypableCommandLine({argv + 1, argv + argc}));

  GlobalOptions global;
  CLI::App app{"Keep a blood-pressure log: add readings, list, summarise, export and chart them."};
  app.name("cardiolith");
  app.fallthrough();
  app.require_subcommand(0, 1);
  app.add_option("--data-dir", global.dataDir,
                 "Keep the log in this folder (created if needed) instead of the default places");
  app.add_option("--color,--colour", global.color,
                 "Colour the categories: auto (on a terminal, unless NO_COLOR is set), always or never")
      ->check(CLI::IsMember({"auto", "always", "never"}));
  app.set_version_flag("--version", "cardiolith " + std::string(kVersion), "Print the version and exit");
  app.add_subcommand("version", "Print the version")->callback([] {
    std::cout << "cardiolith " << kVersion << '\n';
  });

  addAddCommand(app, global);
  addEditCommand(app, global);
  addDeleteCommand(app, global);
  addUndoCommand(app, global);
  addListCommand(app, global);
  addSummaryCommand(app, global);
  addClassifyCommand(app);
  addExportCommand(app, global);
  addImportCommand(app, global);
  addTagsCommand(app, global);
  addSampleCommand(app, global);
  addChartCommand(app, global);
  addReportCommand(app, global);
  addInfoCommand(app, global);
  addServeCommand(app, global);
  addCompletionCommand(app);
  // Set after the commands, which would otherwise each repeat it under their own --help. The blank line
  // keeps the two sentences apart in the manual page too.
  app.footer(
      "Start with:  cardiolith add 128/82 --pulse 71\n\n"
      "Each command has its own --help.");
  requireDecimalIntegers(app);

  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& request) {  // --help, --version
    return app.exit(request);
  } catch (const CLI::ParseError& error) {
    std::cerr << "cardiolith: " << usageErrorText(error, app) << '\n';
    return usageError;
  }
  if (app.get_subcommands().empty()) std::cout << app.help();
  return 0;
}

}  // namespace

int runTool(int argc, char** argv) {
  try {
    return parseAndRun(argc, argv);
  } catch (const ToolError& error) {
    std::cerr << "cardiolith: " << error.what() << '\n';
  } catch (const std::exception& error) {
    std::cerr << "cardiolith: unexpected error: " << error.what() << '\n';
  }
  return 1;
}

}  // namespace cardiolith::tool
