#include <iostream>

#include "commands/commands.hpp"
#include "commands/undo_change.hpp"
#include "log/data_folder.hpp"

namespace cardiolith::tool {

void addUndoCommand(CLI::App& app, const GlobalOptions& global) {
  auto* command = app.add_subcommand(
      "undo", "Take back the last change cardiolith made to the log or the tags; repeat to go further back");
  command->callback([&global] {
    const DataFolder folder(global);
    const UndoneChange undone = undoLastChange(folder);
    // Printed whole once the files are back, so that a failure prints nothing but the error.
    std::string report = "Undid: cardiolith " + undone.commandLine + "\n";
    for (const auto& line : undone.changes) report += "  " + line + "\n";
    std::cout << report;
  });
}

}  // namespace cardiolith::tool
