#include "render/text_table.hpp"

#include <algorithm>

namespace cardiolith::tool {

std::size_t displayWidth(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(
      text.begin(), text.end(), [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }));
}

std::string shortened(std::string_view text, std::size_t width) {
  if (displayWidth(text) <= width) return std::string(text);
  if (width == 0) return "";
  std::size_t kept = 0, end = 0;
  while (end < text.size()) {
    // Steps over one whole UTF-8 sequence: a lead byte and its continuation bytes.
    std::size_t next = end + 1;
    while (next < text.size() && (static_cast<unsigned char>(text[next]) & 0xC0) == 0x80) ++next;
    if (kept + 1 == width) break;
    ++kept;
    end = next;
  }
  return std::string(text.substr(0, end)) + "\u2026";
}

std::string wordWrapped(std::string_view text, std::optional<std::size_t> width) {
  if (!width || displayWidth(text) <= *width) return std::string(text);
  std::string wrapped;
  std::size_t used = 0;  // characters on the line being filled
  bool lineHasWord = false;
  for (std::size_t start = 0; start <= text.size();) {
    const std::size_t end = std::min(text.find(' ', start), text.size());
    const std::string_view word = text.substr(start, end - start);
    const std::size_t wordWidth = displayWidth(word);
    if (lineHasWord && used + 1 + wordWidth > *width) {
      wrapped += "\n  ";
      used = 2;
      lineHasWord = false;
    }
    if (lineHasWord) {
      wrapped += ' ';
      ++used;
    }
    wrapped += word;
    used += wordWidth;
    lineHasWord = true;
    start = end + 1;
  }
  return wrapped;
}

TextTable::TextTable(std::vector<Column> columns) : columns_(std::move(columns)) {}

void TextTable::addRow(std::vector<std::string> cells) {
  cells.resize(columns_.size());
  rows_.push_back(std::move(cells));
}

void TextTable::print(std::ostream& out, const PrintOptions& options) const {
  std::vector<std::size_t> widths;
  std::size_t lineLength = 0;
  for (std::size_t column = 0; column < columns_.size(); ++column) {
    std::size_t width = displayWidth(columns_[column].heading);
    for (const auto& row : rows_) width = std::max(width, displayWidth(row[column]));
    widths.push_back(width);
    lineLength += width + (column > 0 ? 2 : 0);
  }
  if (options.width && lineLength > *options.width && !widths.empty()) {
    const std::size_t excess = lineLength - *options.width;
    const std::size_t floor = displayWidth(columns_.back().heading);
    widths.back() = widths.back() > floor + excess ? widths.back() - excess : floor;
  }
  const auto printLine = [&](auto cellText, std::optional<std::size_t> row) {
    std::string line;
    for (std::size_t column = 0; column < columns_.size(); ++column) {
      const std::string text = shortened(cellText(column), widths[column]);
      const std::string padding(widths[column] - displayWidth(text), ' ');
      if (column > 0) line += "  ";
      std::string padded = columns_[column].align == Align::right ? padding + text : text + padding;
      line += row && options.decorate ? options.decorate(*row, column, padded) : padded;
    }
    line.erase(line.find_last_not_of(' ') + 1);  // no trailing blanks after an empty or short last cell
    out << line << '\n';
  };
  printLine([&](std::size_t column) -> std::string_view { return columns_[column].heading; }, std::nullopt);
  printLine([&](std::size_t column) { return std::string(widths[column], '-'); }, std::nullopt);
  for (std::size_t row = 0; row < rows_.size(); ++row)
    printLine([&](std::size_t column) -> std::string_view { return rows_[row][column]; }, row);
}

}  // namespace cardiolith::tool
