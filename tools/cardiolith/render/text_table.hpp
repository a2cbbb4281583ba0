#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace cardiolith::tool {

// A plain-text table for the terminal: a heading row, a rule, then the rows, columns padded to their
// widest cell and two spaces apart. Widths count characters, not bytes, so UTF-8 text lines up.
class TextTable {
 public:
  enum class Align { left, right };
  struct Column {
    std::string heading;
    Align align = Align::left;
  };

  explicit TextTable(std::vector<Column> columns);

  // One cell per column; missing cells are empty.
  void addRow(std::vector<std::string> cells);
  void print(std::ostream& out) const;

 private:
  std::vector<Column> columns_;
  std::vector<std::vector<std::string>> rows_;
};

// The number of characters (code points) of UTF-8 text.
std::size_t displayWidth(std::string_view text);

}  // namespace cardiolith::tool
