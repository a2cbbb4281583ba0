#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <string_view>

namespace cardiolith::tool {

// The shell completion script for `shell` ("bash", "zsh" or "fish"), made from the application's own
// commands and options, so it never falls behind them: commands and their subcommands, each command's
// options, the values of --color, --format and completion, and file names after --out and --data-dir.
// Empty for another shell.
std::string completionScript(const CLI::App& app, std::string_view shell);

// Adds the command `completion SHELL`, which prints that script.
void addCompletionCommand(CLI::App& app);

}  // namespace cardiolith::tool
