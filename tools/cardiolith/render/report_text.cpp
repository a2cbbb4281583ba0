#include <algorithm>
#include <sstream>
#include <string_view>

#include "render/category_text.hpp"
#include "render/home_report.hpp"
#include "render/text_table.hpp"

namespace cardiolith::tool {
namespace {

constexpr std::size_t lineWidth = 80;

// The bytes of the first `columns` characters of UTF-8 text.
std::size_t bytesOfColumns(std::string_view text, std::size_t columns) {
  std::size_t i = 0;
  for (; i < text.size(); ++i) {
    if ((static_cast<unsigned char>(text[i]) & 0xc0) == 0x80) continue;
    if (columns == 0) break;
    --columns;
  }
  return i;
}

// Words filled into lines of at most 80 columns, the lines after the first indented. A word longer than a
// line (a link, a row of letters in a note) is cut across lines rather than run over the edge.
void printWrapped(std::ostream& out, const std::string& text, std::size_t indent) {
  std::istringstream words(text);
  std::string word, line;
  const auto hasText = [&] { return line.find_first_not_of(' ') != std::string::npos; };
  const auto endLine = [&] {
    out << line << '\n';
    line = std::string(indent, ' ');
  };
  while (words >> word) {
    std::string_view rest = word;
    if (hasText() && displayWidth(line) + 1 + displayWidth(rest) > lineWidth) {
      endLine();
    } else if (hasText()) {
      line += ' ';
    }
    while (displayWidth(line) + displayWidth(rest) > lineWidth) {
      const auto fits = bytesOfColumns(rest, lineWidth - displayWidth(line));
      line += rest.substr(0, fits);
      rest.remove_prefix(fits);
      endLine();
    }
    line += rest;
  }
  if (hasText()) out << line << '\n';
}

// The person's notes, at most shownNotes of them, each after its reading's time and values.
void printPersonNotes(std::ostream& out, const HomeReportDocument& report) {
  const auto notes = personNotes(report.analysis);
  if (notes.empty()) return;
  out << "Your notes\n";
  const auto shown = std::min(notes.size(), shownNotes);
  for (std::size_t i = 0; i < shown; ++i)
    printWrapped(out, notes[i].when + ", " + noteValues(*notes[i].reading) + ": " + notes[i].text, 4);
  if (notes.size() > shown) printWrapped(out, moreNotesText(report, notes.size() - shown), 0);
  out << '\n';
}

}  // namespace

void printReportText(std::ostream& out, const HomeReportDocument& report) {
  const auto& analysis = report.analysis;
  out << "Home blood pressure, " << periodText(report);
  if (report.name) out << ", " << *report.name;
  out << "\n\n";
  if (analysis.days.empty()) {
    out << "No readings in this period. Choose another with --from and --to, or --last.\n";
    return;
  }
  const auto& threshold = analysis.options.threshold;
  if (analysis.roundedMean) {
    out << "Home average:  " << pairText(*analysis.roundedMean) << " mmHg ("
        << categoryName(*analysis.category) << ")\n";
    out << "Threshold:     " << pairText(threshold) << " mmHg, "
        << (*analysis.atOrAboveThreshold ? "reached" : "not reached") << '\n';
    out << "Morning:       " << meansText(analysis.morning) << " mmHg\n";
    out << "Evening:       " << meansText(analysis.evening) << " mmHg\n";
  } else {
    out << "Home average:  none (no morning or evening readings on the days that count)\n";
  }
  const std::size_t counted = analysis.all ? analysis.all->readings : 0;
  out << "Counted:       " << analysis.countedDays << (analysis.countedDays == 1 ? " day, " : " days, ")
      << counted << (counted == 1 ? " reading; " : " readings; ") << analysis.completeDays
      << " with morning and evening\n\n";
  const auto notes = reportNotes(report);
  auto note = notes.begin();
  // The protocol's warning, when there is one, is the first note: it belongs next to the figures it doubts.
  if (!analysis.protocolMet()) {
    printWrapped(out, *note++, 0);
    out << '\n';
  }

  if (analysis.all) {
    using Align = TextTable::Align;
    TextTable figures(
        {{""}, {"Systolic", Align::right}, {"Diastolic", Align::right}, {"Pulse", Align::right}});
    for (auto& row : figureRows(analysis))
      figures.addRow(
          {std::move(row.name), std::move(row.systolic), std::move(row.diastolic), std::move(row.pulse)});
    figures.print(out);
    out << '\n';
  }

  for (const auto& row : dayRows(analysis)) {
    std::string line = row.day + ":";
    if (!row.morning.empty()) line += " morning " + row.morning + ";";
    if (!row.evening.empty()) line += " evening " + row.evening + ";";
    if (!row.other.empty()) line += " other " + row.other + ";";
    line.pop_back();
    if (row.leftOut) line += " (first day, left out)";
    printWrapped(out, line, 4);
  }
  out << '\n';
  printPersonNotes(out, report);
  for (; note != notes.end(); ++note) printWrapped(out, *note, 0);
}

}  // namespace cardiolith::tool
