#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace cardiolith::tool {

// The undo history's file format. A header line, then for each step a line of space-separated fields (the
// change's id, the file's name, the fingerprints of the file before and after, the shared prefix and
// suffix lengths, the sizes of the two texts that follow) and then those texts: the command line and the
// bytes of the file before that differ from after, and a line end. Sizes make every text safe to hold
// any byte.

// A file's size and 64-bit FNV-1a hash, or its absence. It tells whether a file still holds what a change
// left there; it guards against other programs' edits, not against an adversary.
struct Fingerprint {
  bool present = false;
  std::uint64_t size = 0;
  std::uint64_t hash = 0;
  friend bool operator==(const Fingerprint&, const Fingerprint&) = default;
};
Fingerprint fingerprintOf(const std::optional<std::string>& content);

// One write of one file.
struct HistoryStep {
  std::string change;    // the id of the change (a run of the tool) it belongs to
  std::string command;   // that run's command line
  std::string fileName;  // a file in the history file's folder
  Fingerprint before, after;
  std::uint64_t prefix = 0, suffix = 0;  // bytes that before and after share at their start and end
  std::string middle;                    // before's bytes between them
  friend bool operator==(const HistoryStep&, const HistoryStep&) = default;
};

// A history that can't be read; what() says what was wrong.
struct HistoryFormatError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

std::string encodeHistory(const std::vector<HistoryStep>& steps);
// The steps that encodeHistory wrote; HistoryFormatError for any other text, including a step whose file
// name leaves the folder ("../x", "a/b") or is hidden.
std::vector<HistoryStep> decodeHistory(std::string_view text);

}  // namespace cardiolith::tool
