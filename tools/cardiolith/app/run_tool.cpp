#include "app/run_tool.hpp"

#include <CLI/CLI.hpp>
#include <cardiolith/platform/process_info.hpp>
#include <exception>
#include <iostream>

#include "commands/commands.hpp"
#include "global_options.hpp"
#include "log/library_log.hpp"
#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

constexpr int usageError = 2;

int parseAndRun(int argc, char** argv) {
  // The library reads launch arguments for itself, and "DELETE_ALL_RECORDS" among them empties the log.
  // A note or a tag title is not a launch argument: the library sees the program name only.
  cardiolith::ProcessInfo::setArguments({argc > 0 ? argv[0] : "cardiolith"});
  LibraryLog::install();

  GlobalOptions global;
  CLI::App app{"Keep a blood-pressure log: add readings, list, summarise, export and chart them."};
  app.name("cardiolith");
  app.fallthrough();
  app.require_subcommand(0, 1);
  app.add_option("--data-dir", global.dataDir,
                 "Keep the log in this folder (created if needed) instead of the default places");
  app.footer(
      "Start with:  cardiolith add 128/82 --pulse 71\n"
      "Each command has its own --help.");

  addAddCommand(app, global);
  addListCommand(app, global);
  addSummaryCommand(app, global);
  addClassifyCommand(app);
  addExportCommand(app, global);
  addImportCommand(app, global);
  addTagsCommand(app, global);
  addSampleCommand(app, global);
  addChartCommand(app, global);

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    const int status = app.exit(error);
    return status == 0 ? 0 : usageError;
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
