#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace cardiolith::tool {

// The message for an argument that the parser refused, in the tool's own words: what was expected and an
// example, instead of the parser's terse text (which is kept for errors that have no rewording, followed by
// where to read the usage: the help of `command`, e.g. "cardiolith list").
std::string usageErrorText(const CLI::ParseError& error, const std::string& command);

// The command line's command as far as the parser got, e.g. "cardiolith tags add".
std::string parsedCommand(const CLI::App& app);

}  // namespace cardiolith::tool
