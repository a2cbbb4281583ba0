#pragma once

namespace cardiolith::tool {

// Runs one command line of the tool, as main() would: parses the arguments, runs the command, prints
// errors on standard error. Returns the exit status: 0 on success, 1 when the command failed, 2 when the
// command line could not be parsed.
int runTool(int argc, char** argv);

}  // namespace cardiolith::tool
