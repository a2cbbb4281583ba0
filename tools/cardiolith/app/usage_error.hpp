#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace cardiolith::tool {

// The message for a command line that the parser refused, in the tool's own words: what was expected and
// an example or the choices (an unknown command lists the commands, an unknown option the command's
// options, a missing argument says what it is for), then where to read the usage: the --help of the
// command as far as the parser got in `app` (the tool's top-level command), e.g. "cardiolith tags add".
// Errors without a rewording keep the parser's text.
std::string usageErrorText(const CLI::ParseError& error, const CLI::App& app);

}  // namespace cardiolith::tool
