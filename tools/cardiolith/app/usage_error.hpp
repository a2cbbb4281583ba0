#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace cardiolith::tool {

// The message for an argument that the parser refused, in the tool's own words: what was expected and an
// example, instead of the parser's terse text (which is kept for errors that have no rewording).
std::string usageErrorText(const CLI::ParseError& error);

}  // namespace cardiolith::tool
