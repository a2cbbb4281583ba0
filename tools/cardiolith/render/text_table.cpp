#include "render/text_table.hpp"

#include <algorithm>

namespace cardiolith::tool {

std::size_t displayWidth(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(
      text.begin(), text.end(), [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }));
}

TextTable::TextTable(std::vector<Column> columns) : columns_(std::move(columns)) {}

void TextTable::addRow(std::vector<std::string> cells) {
  cells.resize(columns_.size());
  rows_.push_back(std::move(cells));
}

void TextTable::print(std::ostream& out) const {
  std::vector<std::size_t> widths;
  for (std::size_t column = 0; column < columns_.size(); ++column) {
    std::size_t width = displayWidth(columns_[column].heading);
    for (const auto& row : rows_) width = std::max(width, displayWidth(row[column]));
    widths.push_back(width);
  }
  const auto printLine = [&](auto cellText) {
    std::string line;
    for (std::size_t column = 0; column < columns_.size(); ++column) {
      const std::string text(cellText(column));
      const std::string padding(widths[column] - displayWidth(text), ' ');
      if (column > 0) line += "  ";
      line += columns_[column].align == Align::right ? padding + text : text + padding;
    }
    line.erase(line.find_last_not_of(' ') + 1);  // no trailing blanks after an empty or short last cell
    out << line << '\n';
  };
  printLine([&](std::size_t column) -> std::string_view { return columns_[column].heading; });
  printLine([&](std::size_t column) { return std::string(widths[column], '-'); });
  for (const auto& row : rows_)
    printLine([&](std::size_t column) -> std::string_view { return row[column]; });
}

}  // namespace cardiolith::tool
