#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cardiolith::tool {

// What undo needs to take back the tool's recent changes to the data folder's files. Every write of the
// readings or tags file by this process is recorded here, right after it lands, by the one place that
// writes each file (ReadingsLog::save, TagList::finishSaving); the writes of one process form one change.
// A step keeps how the file looked after the write (its size and a 64-bit FNV-1a hash) and the bytes
// needed to turn it back into what it was: the part that differs between before and after (most changes
// touch one stretch of the file) and the common prefix and suffix lengths. The history file is replaced
// durably, like the log. Every function must be called under the folder's exclusive lock.
class ChangeHistory {
 public:
  // How many changes are kept; older ones are dropped and can no longer be undone.
  static constexpr std::size_t keptChanges = 20;

  explicit ChangeHistory(std::filesystem::path historyFile) : file_(std::move(historyFile)) {}

  // Starts a new change: the writes recorded from now on are undone together, and undo names them by
  // `commandLine` ("add 138/85 --pulse 71"). The tool starts one change per run.
  static void startChange(std::string commandLine);

  // Records that `path`, a file in the history file's folder, held `before` (nothing: there was no file)
  // and now holds `after`. A history that can't be read is started again. filesystem_error when the
  // history can't be written; the write of `path` has happened all the same.
  void record(const std::filesystem::path& path, const std::optional<std::string>& before,
              const std::string& after) const;

  // Records the write of `path`, which held `before`, reading what it holds now. A failure to record is
  // printed on standard error as a warning and not thrown: the change itself has been made.
  void recordWrite(const std::filesystem::path& path, const std::optional<std::string>& before) const;
  // The same for a writer that has what it wrote at hand, saving the file's reading back.
  void recordWrite(const std::filesystem::path& path, const std::optional<std::string>& before,
                   const std::string& after) const;

  struct RestoredFile {
    std::filesystem::path path;
    std::optional<std::string> before;  // what the file holds again (nothing: it was removed)
    std::optional<std::string> after;   // what it held until now
  };
  struct Undone {
    std::string commandLine;
    std::vector<RestoredFile> files;
  };
  // What undo says when the history holds no change.
  static constexpr std::string_view nothingToUndo =
      "there is nothing to undo: cardiolith has made no change here that it can take back";
  // Puts the files of the newest change back as they were before it, byte for byte, and drops it from the
  // history. ToolError, changing nothing, when there is no change to undo, the history can't be read, or a
  // file no longer holds what the change left there (something else changed it since).
  Undone undoLast() const;

 private:
  std::filesystem::path file_;
};

// The arguments as a person would retype them, for naming a change: "add 138/85 --note 'after a walk'".
[[nodiscard]] std::string retypableCommandLine(const std::vector<std::string>& arguments);

}  // namespace cardiolith::tool
