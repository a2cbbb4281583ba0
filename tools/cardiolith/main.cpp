// cardiolith: keep a blood-pressure log from the command line. Everything but this entry point lives in the
// cardiolith_cli library, where the tool's unit tests reach it without starting a process.

#include "app/run_tool.hpp"

int main(int argc, char** argv) { return cardiolith::tool::runTool(argc, argv); }
