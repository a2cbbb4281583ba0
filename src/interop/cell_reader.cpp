#include "interop/cell_reader.hpp"

#include <algorithm>
#include <array>

namespace cardiolith::interop::detail {
namespace {
constexpr std::size_t kBlockSize = 1 << 16;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
}  // namespace

CellReader::CellReader(std::istream& in, std::function<void(std::uint64_t)> progress)
    : in_(in), progress_(std::move(progress)) {}

bool CellReader::fill() {
  // Keep what has not been read yet (guessSeparator looks ahead across blocks).
  buffer_.erase(0, position_);
  position_ = 0;
  const std::size_t kept = buffer_.size();
  buffer_.resize(kept + kBlockSize);
  in_.read(buffer_.data() + kept, static_cast<std::streamsize>(kBlockSize));
  buffer_.resize(kept + static_cast<std::size_t>(in_.gcount()));
  bytesRead_ += static_cast<std::uint64_t>(in_.gcount());
  if (progress_) progress_(bytesRead_);
  return buffer_.size() > kept;
}

int CellReader::take() {
  const int c = peek();
  if (c >= 0) ++position_;
  return c;
}

void CellReader::start() {
  if (!started_) {
    while (buffer_.size() - position_ < kByteOrderMark.size() && fill()) {
    }
    if (std::string_view(buffer_).substr(position_).starts_with(kByteOrderMark)) {
      position_ += kByteOrderMark.size();
    }
    started_ = true;
  }
}

char CellReader::guessSeparator() {
  start();
  std::array<std::size_t, 3> counts{};
  constexpr std::array<char, 3> candidates{',', ';', '\t'};
  bool quoted = false;
  for (std::size_t i = position_;; ++i) {
    if (i == buffer_.size()) {
      const std::size_t offset = i - position_;
      if (!fill()) break;
      i = position_ + offset;
    }
    const char c = buffer_[i];
    if (c == '"') quoted = !quoted;
    if (!quoted && (c == '\n' || c == '\r')) break;
    for (std::size_t k = 0; k < candidates.size(); ++k) {
      if (!quoted && c == candidates[k]) ++counts[k];
    }
  }
  const auto best = std::max_element(counts.begin(), counts.end());
  separator_ = *best == 0 ? ',' : candidates[static_cast<std::size_t>(best - counts.begin())];
  return separator_;
}

bool CellReader::nextRow(std::vector<std::string>& cells, std::uint64_t& line) {
  start();
  cells.clear();
  // Skip blank lines.
  for (int c = peek(); c == '\n' || c == '\r'; c = peek()) {
    take();
    if (c == '\n') ++line_;
  }
  if (peek() < 0) return false;
  line = line_;
  std::string cell;
  bool quoted = false;
  bool cellStarted = false;  // a quote opens a quoted cell only as its first character
  for (;;) {
    const int c = take();
    if (c < 0) break;
    if (quoted) {
      if (c == '"') {
        if (peek() == '"') {
          take();
          cell.push_back('"');
        } else {
          quoted = false;
        }
      } else {
        if (c == '\n') ++line_;
        cell.push_back(static_cast<char>(c));
      }
      continue;
    }
    if (c == '"' && !cellStarted) {
      quoted = true;
      cellStarted = true;
    } else if (c == separator_) {
      cells.push_back(std::move(cell));
      cell.clear();
      cellStarted = false;
    } else if (c == '\n') {
      ++line_;
      break;
    } else if (c == '\r' && peek() == '\n') {
      continue;
    } else {
      // Spreadsheets write a quote inside an unquoted cell (8" cuff) as it is: kept, not a quoted part.
      cell.push_back(static_cast<char>(c));
      cellStarted = true;
    }
  }
  cells.push_back(std::move(cell));
  return true;
}

}  // namespace cardiolith::interop::detail
