#pragma once

#include <cstddef>
#include <functional>
#include <optional>
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

  struct PrintOptions {
    // The widest a line may be: the last column's cells are shortened, ending in "…", to fit (never
    // below its heading's width). Absent: no limit.
    std::optional<std::size_t> width;
    // Gives a row's padded cell its final form (a colour, say), by row and column index; none: as is.
    std::function<std::string(std::size_t row, std::size_t column, const std::string& padded)> decorate;
  };

  explicit TextTable(std::vector<Column> columns);

  // One cell per column; missing cells are empty.
  void addRow(std::vector<std::string> cells);
  void print(std::ostream& out, const PrintOptions& options = {}) const;

 private:
  std::vector<Column> columns_;
  std::vector<std::vector<std::string>> rows_;
};

// The number of characters (code points) of UTF-8 text.
std::size_t displayWidth(std::string_view text);
// The text cut to at most `width` characters, its last one "…" when it was cut.
std::string shortened(std::string_view text, std::size_t width);
// The text broken at spaces into lines of at most `width` characters, each line after the first indented
// by two spaces; a word longer than a line keeps a line of its own. Absent width: the text as it is.
std::string wordWrapped(std::string_view text, std::optional<std::size_t> width);

}  // namespace cardiolith::tool
