#pragma once

#include <cstdint>
#include <functional>
#include <istream>
#include <string>
#include <vector>

namespace cardiolith::interop::detail {

// Splits RFC 4180 text into rows of cells, reading `in` a block at a time: quoted cells may hold the
// separator, doubled quotes and line breaks; rows end with LF or CRLF; a byte-order mark before the first
// row is dropped. Text after a closing quote, up to the next separator, is kept as part of the cell; a quote
// inside a cell that does not start with one is kept as it is.
class CellReader {
 public:
  // `progress` hears the count of bytes read from `in` after each block; it may be empty.
  CellReader(std::istream& in, std::function<void(std::uint64_t)> progress);

  // The separator among ',', ';' and tab that occurs most often outside quotes in the first row;
  // ',' when none does. Reads ahead without consuming.
  char guessSeparator();
  void setSeparator(char separator) { separator_ = separator; }

  // The next row into `cells`, false at the end of the text. `line` is the line the row starts on.
  // Blank lines are skipped. An unclosed quote runs to the end of the text.
  bool nextRow(std::vector<std::string>& cells, std::uint64_t& line);

 private:
  // Drops a byte-order mark once, before the first row.
  void start();
  bool fill();
  int peek() {
    return (position_ < buffer_.size() || fill()) ? static_cast<unsigned char>(buffer_[position_]) : -1;
  }
  int take();

  std::istream& in_;
  std::string buffer_;
  std::size_t position_ = 0;
  std::function<void(std::uint64_t)> progress_;
  std::uint64_t bytesRead_ = 0;
  std::uint64_t line_ = 1;
  char separator_ = ',';
  bool started_ = false;
};

}  // namespace cardiolith::interop::detail
