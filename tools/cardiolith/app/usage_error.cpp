#include "app/usage_error.hpp"

#include <array>
#include <string_view>
#include <vector>

namespace cardiolith::tool {
namespace {

struct Expectation {
  std::string_view option;
  std::string_view expected;
};

// The options whose numbers the parser converts or checks, with what they take.
constexpr std::array expectations{
    Expectation{"--pulse", "a whole number of beats per minute, e.g. --pulse 71"},
    Expectation{"--count", "a whole number of readings from 1 to 100000, e.g. --count 30"},
    Expectation{"--variance", "a whole number of mmHg from 1 to 1000, e.g. --variance 10"},
    Expectation{"--days", "a whole number of days from 1 to 100000, e.g. --days 30"},
    Expectation{"--port", "a port number from 0 to 65535, e.g. --port 8470 (0: any free port)"},
};

// What the parser names first in its message: "--days" of "--days: Value 0 not in range 1 to 100000",
// "--out" of "--out is required", "--from" of "--from excludes --last".
std::string firstName(std::string_view message) {
  return std::string(message.substr(0, message.find_first_of(": ")));
}

std::string afterLast(std::string_view message, std::string_view marker) {
  const auto at = message.rfind(marker);
  return at == std::string_view::npos ? "" : std::string(message.substr(at + marker.size()));
}

// What the parser found wrong, without the option's name and the advice that the reworded message gives:
// "\"71.0\" is not a whole number" of "--pulse: \"71.0\" is not a whole number; write it in ...".
std::string found(std::string_view message, std::string_view name) {
  if (message.starts_with(name) && message.substr(name.size()).starts_with(": "))
    message.remove_prefix(name.size() + 2);
  return std::string(message.substr(0, message.find(';')));
}

// "a, b or c".
std::string listed(const std::vector<std::string>& items) {
  std::string text;
  for (std::size_t i = 0; i < items.size(); ++i)
    text += (i == 0 ? "" : i + 1 == items.size() ? " or " : ", ") + items[i];
  return text;
}

// The choices of "xml not in {csv,tsv,json,fhir}", in the order the parser gives them.
std::vector<std::string> choicesIn(std::string_view message) {
  const auto open = message.rfind('{'), close = message.rfind('}');
  std::vector<std::string> choices;
  if (open == std::string_view::npos || close == std::string_view::npos || close < open) return choices;
  std::string_view inside = message.substr(open + 1, close - open - 1);
  for (std::size_t comma; (comma = inside.find(',')) != std::string_view::npos;
       inside.remove_prefix(comma + 1))
    choices.emplace_back(inside.substr(0, comma));
  choices.emplace_back(inside);
  return choices;
}

// "--out" as it is, "reading" as "the reading".
std::string named(std::string_view name) {
  return name.starts_with('-') ? std::string(name) : "the " + std::string(name);
}

// What an option or argument is for, from its help, e.g. "The picture to write, ...".
std::string described(const CLI::App& command, const std::string& name) {
  const CLI::Option* option = command.get_option_no_throw(name);
  return option == nullptr ? "" : option->get_description();
}

// The words that `command` takes: its options, or at the top its commands.
std::string accepted(const CLI::App& command, bool commands) {
  std::vector<std::string> names;
  if (commands) {
    for (const CLI::App* sub : command.get_subcommands({})) names.push_back(sub->get_name());
  } else {
    for (const CLI::Option* option : command.get_options()) {
      if (option->nonpositional() && option != command.get_help_ptr()) names.push_back(option->get_name());
    }
  }
  return listed(names);
}

// By type: the parser names some errors after the command instead of their kind.
template <typename Error>
bool is(const CLI::ParseError& error) {
  return dynamic_cast<const Error*>(&error) != nullptr;
}

// The parser's message in the tool's words, or nothing when it has none for this kind of error.
std::string reworded(const CLI::ParseError& error, const CLI::App& command, const std::string& commandName) {
  const std::string message = error.what();
  const std::string name = firstName(message);
  if (is<CLI::ConversionError>(error) || is<CLI::ValidationError>(error)) {
    for (const auto& expectation : expectations) {
      if (name == expectation.option)
        return name + " takes " + std::string(expectation.expected) + " (" + found(message, name) + ")";
    }
    if (const auto choices = choicesIn(message); !choices.empty()) {
      return named(name) + " takes " + listed(choices) + ", e.g. " + commandName + " " +
             (name.starts_with('-') ? name + " " : "") + choices.front() + " (" + found(message, name) + ")";
    }
  } else if (is<CLI::ArgumentMismatch>(error) && message.ends_with(" missing")) {
    for (const auto& expectation : expectations) {
      if (name == expectation.option) return name + " needs a value: " + std::string(expectation.expected);
    }
    return name + " needs a value: " + described(command, name);
  } else if (is<CLI::RequiredError>(error) && message.ends_with(" is required")) {
    return commandName + " needs " + named(name) + ": " + described(command, name);
  } else if (is<CLI::ExcludesError>(error)) {
    return "give " + name + " or " + afterLast(message, " excludes ") + ", not both";
  } else if (is<CLI::RequiresError>(error)) {
    return name + " needs " + afterLast(message, " requires ") + " as well";
  } else if (is<CLI::ExtrasError>(error)) {
    const std::string extra = afterLast(message, ": ");
    if (extra.starts_with('-')) {
      return commandName + " has no option " + extra + "; it takes " + accepted(command, false);
    }
    if (!command.get_subcommands({}).empty()) {
      return commandName + " has no command \"" + extra + "\"; it takes " + accepted(command, true);
    }
    return commandName + " takes nothing more; \"" + extra + "\" was not expected";
  }
  return "";
}

}  // namespace

std::string usageErrorText(const CLI::ParseError& error, const CLI::App& app) {
  const CLI::App* command = &app;
  std::string commandName = app.get_name();
  for (auto parsed = app.get_subcommands(); !parsed.empty(); parsed = command->get_subcommands()) {
    command = parsed.front();
    commandName += " " + command->get_name();
  }
  const std::string text = reworded(error, *command, commandName);
  return (text.empty() ? std::string(error.what()) : text) + "\nSee " + commandName +
         " --help for what it takes.";
}

}  // namespace cardiolith::tool
