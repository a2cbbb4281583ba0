#include "interop/cell_text.hpp"

#include <algorithm>

namespace cardiolith::interop::detail {
namespace {

bool startsFormulaAfterApostrophes(std::string_view text) {
  const std::size_t first = text.find_first_not_of('\'');
  if (first == std::string_view::npos) return false;
  const char c = text[first];
  return c == '=' || c == '+' || c == '-' || c == '@' || c == '\t' || c == '\r';
}

}  // namespace

std::string guardedFromFormulas(std::string_view text) {
  std::string cell;
  cell.reserve(text.size() + 1);
  if (startsFormulaAfterApostrophes(text)) cell.push_back('\'');
  cell.append(text);
  return cell;
}

void appendDigits(std::string& out, int value, int width) {
  char digits[8];
  for (int i = width - 1; i >= 0; --i, value /= 10) digits[i] = static_cast<char>('0' + value % 10);
  out.append(digits, static_cast<std::size_t>(width));
}

void appendDayAndMinute(std::string& out, const CivilTime& time, char between) {
  appendDigits(out, time.year, 4);
  out.push_back('-');
  appendDigits(out, time.month, 2);
  out.push_back('-');
  appendDigits(out, time.day, 2);
  out.push_back(between);
  appendDigits(out, time.hour, 2);
  out.push_back(':');
  appendDigits(out, time.minute, 2);
}

void appendOffset(std::string& out, int offsetSeconds) {
  const int minutes = (offsetSeconds < 0 ? -offsetSeconds : offsetSeconds) / 60;
  out.push_back(offsetSeconds < 0 ? '-' : '+');
  appendDigits(out, minutes / 60, 2);
  out.push_back(':');
  appendDigits(out, minutes % 60, 2);
}

std::string_view unguarded(std::string_view text) {
  if (text.starts_with('\'') && startsFormulaAfterApostrophes(text)) text.remove_prefix(1);
  return text;
}

std::string joinedTitles(const std::vector<std::string>& titles) {
  std::string out;
  for (const auto& title : titles) {
    if (!out.empty()) out += "; ";
    for (const char c : title) {
      if (c == '\\' || c == ';') out.push_back('\\');
      out.push_back(c);
    }
  }
  return out;
}

std::vector<std::string> splitTitles(std::string_view text) {
  std::vector<std::string> titles;
  if (text.empty()) return titles;
  std::string title;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '\\' && i + 1 < text.size()) {
      title.push_back(text[++i]);
    } else if (c == ';') {
      titles.push_back(std::move(title));
      title.clear();
      if (i + 1 < text.size() && text[i + 1] == ' ') ++i;
    } else {
      title.push_back(c);
    }
  }
  titles.push_back(std::move(title));
  return titles;
}

void appendQuoted(std::string& out, std::string_view cell, char separator) {
  const bool needsQuotes = std::any_of(cell.begin(), cell.end(), [separator](char c) {
    return c == separator || c == '"' || c == '\n' || c == '\r';
  });
  if (!needsQuotes) {
    out += cell;
    return;
  }
  out.push_back('"');
  for (const char c : cell) {
    if (c == '"') out.push_back('"');
    out.push_back(c);
  }
  out.push_back('"');
}

}  // namespace cardiolith::interop::detail
