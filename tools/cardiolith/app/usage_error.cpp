#include "app/usage_error.hpp"

#include <array>
#include <string_view>

namespace cardiolith::tool {
namespace {

struct Expectation {
  std::string_view option;
  std::string_view expected;
};

// The options whose values the parser converts or checks, with what they take.
constexpr std::array expectations{
    Expectation{"--pulse", "a whole number of beats per minute, e.g. --pulse 71"},
    Expectation{"--count", "a whole number of readings from 1 to 100000, e.g. --count 30"},
    Expectation{"--variance", "a whole number of mmHg from 1 to 1000, e.g. --variance 10"},
    Expectation{"--days", "a whole number of days from 1 to 100000, e.g. --days 30"},
    Expectation{"--format", "csv or tsv, e.g. --format tsv"},
    Expectation{"--color", "never, always or auto, e.g. --color never"},
};

}  // namespace

std::string usageErrorText(const CLI::ParseError& error, const std::string& command) {
  const std::string_view message = error.what();
  if (error.get_name() == "ConversionError" || error.get_name() == "ValidationError") {
    for (const auto& expectation : expectations) {
      if (message.find(expectation.option) != std::string_view::npos) {
        return std::string(expectation.option) + " takes " + std::string(expectation.expected) + " (" +
               std::string(message) + ")";
      }
    }
  }
  return std::string(message) + "\nSee " + command + " --help for what it takes.";
}

std::string parsedCommand(const CLI::App& app) {
  std::string command = app.get_name();
  for (const CLI::App* level = &app;;) {
    const auto parsed = level->get_subcommands();
    if (parsed.empty()) return command;
    level = parsed.front();
    command += " " + level->get_name();
  }
}

}  // namespace cardiolith::tool
