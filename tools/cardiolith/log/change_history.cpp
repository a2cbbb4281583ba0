#include "log/change_history.hpp"

#include <cardiolith/platform/durable_file.hpp>
#include <cardiolith/platform/uuid.hpp>
#include <iostream>
#include <map>
#include <mutex>
#include <set>
#include <string_view>

#include "log/history_format.hpp"
#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

// The change that this process's writes belong to.
struct ProcessChange {
  std::mutex mutex;
  std::string id = UUID::random().uuidString();
  std::string commandLine;
};

ProcessChange& processChange() {
  static ProcessChange change;
  return change;
}

std::vector<HistoryStep> readSteps(const std::filesystem::path& file) {
  const auto text = durable_file::readIfPresent(file);
  if (!text) return {};
  return decodeHistory(*text);
}

// Drops the oldest changes beyond the kept number.
void prune(std::vector<HistoryStep>& steps) {
  std::set<std::string> changes;
  for (auto step = steps.rbegin(); step != steps.rend(); ++step) {
    changes.insert(step->change);
    if (changes.size() > ChangeHistory::keptChanges) {
      steps.erase(steps.begin(), step.base());
      return;
    }
  }
}

std::string fileDescription(const std::filesystem::path& path) { return "the file " + path.string(); }

}  // namespace

std::string retypableCommandLine(const std::vector<std::string>& arguments) {
  std::string line;
  for (const auto& argument : arguments) {
    if (!line.empty()) line += ' ';
    const bool plain =
        !argument.empty() && argument.find_first_of(" \t\n'\"\\$`;&|<>()*?#~") == std::string::npos;
    line += plain ? argument : "'" + argument + "'";
  }
  return line;
}

void ChangeHistory::startChange(std::string commandLine) {
  auto& change = processChange();
  std::lock_guard lock(change.mutex);
  change.id = UUID::random().uuidString();
  change.commandLine = std::move(commandLine);
}

void ChangeHistory::record(const std::filesystem::path& path, const std::optional<std::string>& before,
                           const std::string& after) const {
  std::vector<HistoryStep> steps;
  try {
    steps = readSteps(file_);
  } catch (const HistoryFormatError& error) {
    std::cerr << "cardiolith: the undo history " << file_.string() << " is damaged (" << error.what()
              << "); it starts again with this change\n";
  }
  HistoryStep step;
  {
    auto& change = processChange();
    std::lock_guard lock(change.mutex);
    step.change = change.id;
    step.command = change.commandLine;
  }
  step.fileName = path.filename().string();
  step.before = fingerprintOf(before);
  step.after = fingerprintOf(after);
  if (before) {
    const std::size_t limit = std::min(before->size(), after.size());
    std::size_t prefix = 0, suffix = 0;
    while (prefix < limit && (*before)[prefix] == after[prefix]) ++prefix;
    while (suffix < limit - prefix &&
           (*before)[before->size() - 1 - suffix] == after[after.size() - 1 - suffix])
      ++suffix;
    step.prefix = prefix;
    step.suffix = suffix;
    step.middle = before->substr(prefix, before->size() - prefix - suffix);
  }
  steps.push_back(std::move(step));
  prune(steps);
  durable_file::replace(file_, encodeHistory(steps));
}

namespace {

void warnThatUndoCannotTakeItBack(const std::exception& error) {
  std::cerr << "cardiolith: warning: the change was made, but cardiolith undo won't be able to take it back: "
            << error.what() << '\n';
}

}  // namespace

void ChangeHistory::recordWrite(const std::filesystem::path& path,
                                const std::optional<std::string>& before) const {
  try {
    const auto after = durable_file::readIfPresent(path);
    if (after) record(path, before, *after);
  } catch (const std::exception& error) {
    warnThatUndoCannotTakeItBack(error);
  }
}

void ChangeHistory::recordWrite(const std::filesystem::path& path, const std::optional<std::string>& before,
                                const std::string& after) const {
  try {
    record(path, before, after);
  } catch (const std::exception& error) {
    warnThatUndoCannotTakeItBack(error);
  }
}

ChangeHistory::Undone ChangeHistory::undoLast() const {
  std::vector<HistoryStep> steps;
  try {
    steps = readSteps(file_);
  } catch (const HistoryFormatError& error) {
    throw ToolError("can't undo: the undo history " + file_.string() + " is damaged (" + error.what() +
                    "). Nothing was changed.");
  } catch (const std::exception& error) {
    throw ToolError("can't undo: the undo history can't be read: " + std::string(error.what()));
  }
  if (steps.empty()) throw ToolError(std::string(nothingToUndo));

  const std::string change = steps.back().change;
  auto first = steps.end();
  while (first != steps.begin() && std::prev(first)->change == change) --first;

  const auto folder = file_.parent_path();
  std::map<std::string, RestoredFile> files;  // by file name
  for (auto step = steps.end(); step != first;) {
    --step;
    auto [entry, isNew] = files.try_emplace(step->fileName);
    auto& restored = entry->second;
    if (isNew) {
      restored.path = folder / step->fileName;
      restored.after = durable_file::readIfPresent(restored.path);
      restored.before = restored.after;
    }
    const auto current = fingerprintOf(restored.before);
    if (current == step->before) continue;  // already put back by an undo that stopped before its end
    if (current != step->after || step->prefix + step->suffix > restored.before->size()) {
      throw ToolError("can't undo \"cardiolith " + step->command + "\": " + fileDescription(restored.path) +
                      " has been changed since, by something other than cardiolith, and undo would overwrite "
                      "that change. Nothing was undone.");
    }
    if (!step->before.present) {
      restored.before.reset();
      continue;
    }
    const std::string& now = *restored.before;
    restored.before = now.substr(0, step->prefix) + step->middle + now.substr(now.size() - step->suffix);
  }

  Undone undone{first->command, {}};
  for (auto& [name, restored] : files) {
    if (restored.before != restored.after) {
      if (restored.before) {
        durable_file::replace(restored.path, *restored.before);
      } else {
        durable_file::remove(restored.path);
      }
    }
    undone.files.push_back(std::move(restored));
  }
  steps.erase(first, steps.end());
  durable_file::replace(file_, encodeHistory(steps));
  return undone;
}

}  // namespace cardiolith::tool
