#include "app/completion.hpp"

#include <algorithm>
#include <iostream>
#include <memory>
#include <vector>

#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

struct OptionWords {
  std::vector<std::string> names;  // with their dashes: "--pulse", "-p"
  bool takesValue = false;
  std::string description;
  std::string values;  // the fixed values it takes, space-separated ("csv tsv json fhir"); empty: any
};

// The values of an option checked against a set, which the parser shows in its type: "TEXT:{csv,tsv}".
std::string valuesOf(const CLI::Option& option) {
  const std::string type = option.get_type_name();
  const auto open = type.find(":{"), close = type.rfind('}');
  if (open == std::string::npos || close == std::string::npos || close < open) return "";
  std::string values = type.substr(open + 2, close - open - 2);
  std::replace(values.begin(), values.end(), ',', ' ');
  return values;
}

struct CommandWords {
  std::string path;  // "add", "tags add"
  std::string name;
  std::string description;
  std::vector<OptionWords> options;
  std::vector<std::string> subcommands;
};

std::vector<OptionWords> optionsOf(const CLI::App& app) {
  std::vector<OptionWords> options;
  for (const CLI::Option* option : app.get_options()) {
    if (!option->nonpositional()) continue;
    OptionWords words{{}, option->get_type_size() > 0, option->get_description(), valuesOf(*option)};
    for (const auto& name : option->get_lnames()) words.names.push_back("--" + name);
    for (const auto& name : option->get_snames()) words.names.push_back("-" + name);
    options.push_back(std::move(words));
  }
  return options;
}

void collect(const CLI::App& app, const std::string& prefix, std::vector<CommandWords>& commands) {
  for (const CLI::App* sub : app.get_subcommands({})) {
    CommandWords words{
        prefix + sub->get_name(), sub->get_name(), sub->get_description(), optionsOf(*sub), {}};
    for (const CLI::App* inner : sub->get_subcommands({})) words.subcommands.push_back(inner->get_name());
    commands.push_back(words);
    collect(*sub, words.path + " ", commands);
  }
}

std::string joinedWords(const std::vector<std::string>& words) {
  std::string text;
  for (const auto& word : words) text += (text.empty() ? "" : " ") + word;
  return text;
}

std::vector<std::string> optionNames(const std::vector<OptionWords>& options) {
  std::vector<std::string> names;
  for (const auto& option : options) names.insert(names.end(), option.names.begin(), option.names.end());
  return names;
}

// Single-quoted for a shell: ' becomes '\''.
std::string quotedForShell(std::string_view text) {
  std::string quoted = "'";
  for (const char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

std::string bashScript(const CLI::App& app, const std::vector<CommandWords>& commands) {
  std::vector<std::string> top;
  for (const auto& command : commands)
    if (command.path == command.name) top.push_back(command.name);
  auto topWords = top;
  for (const auto& name : optionNames(optionsOf(app))) topWords.push_back(name);

  std::string script =
      "# bash completion for cardiolith\n"
      "_cardiolith() {\n"
      "  local cur=\"${COMP_WORDS[COMP_CWORD]}\" prev=\"${COMP_WORDS[COMP_CWORD-1]}\"\n"
      "  case \"$prev\" in\n"
      "    --out|-o|--data-dir) COMPREPLY=($(compgen -f -- \"$cur\")); return ;;\n"
      "    completion) COMPREPLY=($(compgen -W 'bash zsh fish' -- \"$cur\")); return ;;\n"
      "  esac\n"
      "  local path=\"\" word i\n"
      "  for ((i = 1; i < COMP_CWORD; i++)); do\n"
      "    word=\"${COMP_WORDS[i]}\"\n"
      "    case \"${path:+$path }$word\" in\n";
  for (const auto& command : commands)
    script += "      " + quotedForShell(command.path) + ") path=\"${path:+$path }$word\" ;;\n";
  // An option's fixed values depend on the command ("export --format" and "report --format" differ); the
  // top-level options are taken after any command too.
  script +=
      "    esac\n"
      "  done\n"
      "  local words\n"
      "  case \"$path $prev\" in\n";
  for (const auto& option : optionsOf(app)) {
    for (const auto& name : option.names) {
      if (!option.values.empty())
        script += "    *" + quotedForShell(" " + name) + ") words=" + quotedForShell(option.values) + " ;;\n";
    }
  }
  for (const auto& command : commands) {
    for (const auto& option : command.options) {
      for (const auto& name : option.names) {
        if (option.values.empty()) continue;
        script += "    " + quotedForShell(command.path + " " + name) +
                  ") words=" + quotedForShell(option.values) + " ;;\n";
      }
    }
  }
  script +=
      "  esac\n"
      "  if [ -n \"${words+set}\" ]; then COMPREPLY=($(compgen -W \"$words\" -- \"$cur\")); return; fi\n"
      "  case \"$path\" in\n"
      "    '') words=" +
      quotedForShell(joinedWords(topWords)) + " ;;\n";
  for (const auto& command : commands) {
    auto words = command.subcommands;
    for (const auto& name : optionNames(command.options)) words.push_back(name);
    script +=
        "    " + quotedForShell(command.path) + ") words=" + quotedForShell(joinedWords(words)) + " ;;\n";
  }
  script +=
      "  esac\n"
      "  COMPREPLY=($(compgen -W \"$words\" -- \"$cur\"))\n"
      "}\n"
      "complete -o default -F _cardiolith cardiolith\n";
  return script;
}

std::string fishScript(const CLI::App& app, const std::vector<CommandWords>& commands) {
  std::string script = "# fish completion for cardiolith\ncomplete -c cardiolith -f\n";
  const auto optionLine = [](const std::string& condition, const OptionWords& option) {
    std::string line = "complete -c cardiolith" + condition;
    for (const auto& name : option.names)
      line += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
    if (option.takesValue) {
      line += option.values.empty() ? " -r -F" : " -x -a " + quotedForShell(option.values);
    }
    return line + " -d " + quotedForShell(option.description) + "\n";
  };
  for (const auto& option : optionsOf(app)) script += optionLine("", option);
  std::string topNames;
  for (const auto& command : commands)
    if (command.path == command.name) topNames += (topNames.empty() ? "" : " ") + command.name;
  for (const auto& command : commands) {
    const bool top = command.path == command.name;
    const std::string parent = top ? "" : command.path.substr(0, command.path.rfind(' '));
    const std::string condition = top ? " -n " + quotedForShell("not __fish_seen_subcommand_from " + topNames)
                                      : " -n " + quotedForShell("__fish_seen_subcommand_from " + parent);
    script += "complete -c cardiolith" + condition + " -a " + quotedForShell(command.name) + " -d " +
              quotedForShell(command.description) + "\n";
    for (const auto& option : command.options)
      script += optionLine(" -n " + quotedForShell("__fish_seen_subcommand_from " + command.name), option);
  }
  script += "complete -c cardiolith -n '__fish_seen_subcommand_from completion' -a 'bash zsh fish'\n";
  return script;
}

// zsh runs the bash script through its bash-completion emulation, which keeps one script to maintain.
std::string zshScript(const CLI::App& app, const std::vector<CommandWords>& commands) {
  return "#compdef cardiolith\n# zsh completion for cardiolith\nautoload -U +X bashcompinit && "
         "bashcompinit\n" +
         bashScript(app, commands);
}

}  // namespace

std::string completionScript(const CLI::App& app, std::string_view shell) {
  std::vector<CommandWords> commands;
  collect(app, "", commands);
  if (shell == "bash") return bashScript(app, commands);
  if (shell == "zsh") return zshScript(app, commands);
  if (shell == "fish") return fishScript(app, commands);
  return "";
}

void addCompletionCommand(CLI::App& app) {
  auto shell = std::make_shared<std::string>();
  auto* command = app.add_subcommand(
      "completion", "Print the completion script for a shell, e.g. cardiolith completion bash >> ~/.bashrc");
  command->add_option("shell", *shell, "bash, zsh or fish")
      ->required()
      ->check(CLI::IsMember({"bash", "zsh", "fish"}));
  command->callback([shell, &app] { std::cout << completionScript(app, *shell); });
}

}  // namespace cardiolith::tool
