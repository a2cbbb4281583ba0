#include "log/change_history.hpp"

#include <cardiolith/platform/durable_file.hpp>
#include <cardiolith/platform/uuid.hpp>
#include <charconv>
#include <iostream>
#include <map>
#include <mutex>
#include <set>
#include <stdexcept>
#include <string_view>

#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

constexpr std::string_view header = "cardiolith change history 1\n";

struct Fingerprint {
  bool present = false;
  std::uint64_t size = 0;
  std::uint64_t hash = 0;
  friend bool operator==(const Fingerprint&, const Fingerprint&) = default;
};

// FNV-1a, 64 bits: tells whether a file still holds what a change left there. It guards against other
// programs' edits, not against an adversary, so a fast non-cryptographic hash is enough.
Fingerprint fingerprintOf(const std::optional<std::string>& content) {
  if (!content) return {};
  std::uint64_t hash = 14695981039346656037ull;
  for (const char byte : *content) {
    hash ^= static_cast<unsigned char>(byte);
    hash *= 1099511628211ull;
  }
  return {true, content->size(), hash};
}

struct Step {
  std::string change;  // the id of the process that made it
  std::string command;
  std::string fileName;
  Fingerprint before, after;
  std::uint64_t prefix = 0, suffix = 0;  // bytes that before and after share at their start and end
  std::string middle;                    // before's bytes between them
};

struct HistoryError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

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

std::string encode(const std::vector<Step>& steps) {
  std::string text(header);
  for (const auto& step : steps) {
    const auto fields = [](const Fingerprint& print) {
      return std::to_string(print.present) + " " + std::to_string(print.size) + " " +
             std::to_string(print.hash);
    };
    text += "step " + step.change + " " + step.fileName + " " + fields(step.before) + " " +
            fields(step.after) + " " + std::to_string(step.prefix) + " " + std::to_string(step.suffix) + " " +
            std::to_string(step.command.size()) + " " + std::to_string(step.middle.size()) + "\n" +
            step.command + step.middle + "\n";
  }
  return text;
}

// Reads the history written by encode(); HistoryError for anything else.
class Decoder {
 public:
  explicit Decoder(std::string_view text) : text_(text) {}

  std::vector<Step> steps() {
    if (!text_.starts_with(header))
      throw HistoryError("it does not start with \"" + std::string(header.substr(0, 26)) + "\"");
    text_.remove_prefix(header.size());
    std::vector<Step> result;
    while (!text_.empty()) {
      Step step;
      if (word() != "step") throw HistoryError("a step does not start with \"step\"");
      step.change = std::string(word());
      step.fileName = std::string(word());
      if (step.fileName.empty() || step.fileName.find('/') != std::string::npos ||
          step.fileName.starts_with('.'))
        throw HistoryError("a step names no file of the data folder");
      step.before = fingerprint();
      step.after = fingerprint();
      step.prefix = number();
      step.suffix = number();
      const auto commandSize = number(), middleSize = number('\n');
      step.command = bytes(commandSize);
      step.middle = bytes(middleSize);
      if (bytes(1) != "\n") throw HistoryError("a step does not end where its sizes say");
      result.push_back(std::move(step));
    }
    return result;
  }

 private:
  std::string_view word(char end = ' ') {
    const auto stop = text_.find(end);
    if (stop == std::string_view::npos) throw HistoryError("it ends in the middle of a step");
    const auto result = text_.substr(0, stop);
    text_.remove_prefix(stop + 1);
    return result;
  }
  std::uint64_t number(char end = ' ') {
    const auto digits = word(end);
    std::uint64_t value = 0;
    const auto [stop, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (digits.empty() || error != std::errc{} || stop != digits.data() + digits.size())
      throw HistoryError("\"" + std::string(digits) + "\" is not a size");
    return value;
  }
  Fingerprint fingerprint() {
    Fingerprint print;
    print.present = number() != 0;
    print.size = number();
    print.hash = number();
    return print;
  }
  std::string bytes(std::uint64_t count) {
    if (count > text_.size()) throw HistoryError("it ends in the middle of a step");
    std::string result(text_.substr(0, count));
    text_.remove_prefix(count);
    return result;
  }

  std::string_view text_;
};

std::vector<Step> readSteps(const std::filesystem::path& file) {
  const auto text = durable_file::readIfPresent(file);
  if (!text) return {};
  return Decoder(*text).steps();
}

// Drops the oldest changes beyond the kept number.
void prune(std::vector<Step>& steps) {
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

void ChangeHistory::startChange(std::string commandLine) {
  auto& change = processChange();
  std::lock_guard lock(change.mutex);
  change.id = UUID::random().uuidString();
  change.commandLine = std::move(commandLine);
}

void ChangeHistory::record(const std::filesystem::path& path, const std::optional<std::string>& before,
                           const std::string& after) const {
  std::vector<Step> steps;
  try {
    steps = readSteps(file_);
  } catch (const HistoryError& error) {
    std::cerr << "cardiolith: the undo history " << file_.string() << " is damaged (" << error.what()
              << "); it starts again with this change\n";
  }
  Step step;
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
  durable_file::replace(file_, encode(steps));
}

void ChangeHistory::recordWrite(const std::filesystem::path& path,
                                const std::optional<std::string>& before) const {
  try {
    const auto after = durable_file::readIfPresent(path);
    if (after) record(path, before, *after);
  } catch (const std::exception& error) {
    std::cerr
        << "cardiolith: warning: the change was made, but cardiolith undo won't be able to take it back: "
        << error.what() << '\n';
  }
}

ChangeHistory::Undone ChangeHistory::undoLast() const {
  std::vector<Step> steps;
  try {
    steps = readSteps(file_);
  } catch (const HistoryError& error) {
    throw ToolError("can't undo: the undo history " + file_.string() + " is damaged (" + error.what() +
                    "). Nothing was changed.");
  } catch (const std::exception& error) {
    throw ToolError("can't undo: the undo history can't be read: " + std::string(error.what()));
  }
  if (steps.empty())
    throw ToolError("there is nothing to undo: cardiolith has made no change here that it can take back");

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
  durable_file::replace(file_, encode(steps));
  return undone;
}

}  // namespace cardiolith::tool
