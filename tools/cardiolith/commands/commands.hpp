#pragma once

#include <CLI/CLI.hpp>

#include "global_options.hpp"

namespace cardiolith::tool {

// Each adds one subcommand, with its options and the callback that runs it, to the application. The
// callbacks throw ToolError for failures the user can act on.
void addAddCommand(CLI::App& app, const GlobalOptions& global);
void addEditCommand(CLI::App& app, const GlobalOptions& global);
void addDeleteCommand(CLI::App& app, const GlobalOptions& global);
void addUndoCommand(CLI::App& app, const GlobalOptions& global);
void addListCommand(CLI::App& app, const GlobalOptions& global);
void addSummaryCommand(CLI::App& app, const GlobalOptions& global);
void addClassifyCommand(CLI::App& app);
void addExportCommand(CLI::App& app, const GlobalOptions& global);
void addImportCommand(CLI::App& app, const GlobalOptions& global);
void addTagsCommand(CLI::App& app, const GlobalOptions& global);
void addSampleCommand(CLI::App& app, const GlobalOptions& global);
void addChartCommand(CLI::App& app, const GlobalOptions& global);
void addReportCommand(CLI::App& app, const GlobalOptions& global);
void addInfoCommand(CLI::App& app, const GlobalOptions& global);
void addServeCommand(CLI::App& app, const GlobalOptions& global);

}  // namespace cardiolith::tool
