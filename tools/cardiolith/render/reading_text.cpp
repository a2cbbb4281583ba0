#include "render/reading_text.hpp"

#include <cardiolith/analysis/blood_pressure_analysis.hpp>
#include <cardiolith/platform/text.hpp>

#include "input/reading_id_input.hpp"
#include "render/category_text.hpp"

namespace cardiolith::tool {

// The POSIX locale keeps the digits and the calendar fixed, so what the tool shows is what --at accepts.
const DateFormatter& displayDateFormatter() {
  static const DateFormatter formatter("yyyy-MM-dd HH:mm", "en_US_POSIX");
  return formatter;
}

const DateFormatter& isoDateFormatter() {
  static const DateFormatter formatter("yyyy-MM-dd'T'HH:mm:ssXXX", "en_US_POSIX");
  return formatter;
}

std::string singleLine(std::string_view text) { return text::printable(text); }

std::string plainNote(std::string_view text) {
  std::string note;
  const auto space = [&] {
    if (!note.empty() && note.back() != ' ') note += ' ';
  };
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const auto next = [&](std::size_t ahead) {
      return i + ahead < text.size() ? static_cast<unsigned char>(text[i + ahead]) : 0U;
    };
    if (byte == '\n' || byte == '\r' || byte == '\t' || byte == ' ') {
      space();
    } else if (byte < 0x20 || byte == 0x7f) {
      continue;
    } else if (byte == 0xc2 && next(1) >= 0x80 && next(1) <= 0x9f) {
      ++i;  // a C1 control, two bytes in UTF-8
    } else if (byte == 0xe2 && next(1) == 0x80 && (next(2) == 0xa8 || next(2) == 0xa9)) {
      space();  // the line and paragraph separators
      i += 2;
    } else {
      note += text[i];
    }
  }
  if (!note.empty() && note.back() == ' ') note.pop_back();
  return note;
}

std::string joined(const std::vector<std::string>& items, std::string_view separator) {
  std::string text;
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (i > 0) text += separator;
    text += items[i];
  }
  return text;
}

std::string readingCount(std::size_t count) {
  return std::to_string(count) + (count == 1 ? " reading" : " readings");
}

std::string describeValues(const Reading& reading) {
  return std::to_string(reading.systolic()) + "/" + std::to_string(reading.diastolic()) + " mmHg, pulse " +
         std::to_string(reading.pulse()) + ": " +
         std::string(categoryName(BloodPressureAnalyzer::result(reading.systolic(), reading.diastolic())));
}

std::string describeWithId(const ReadingList& readings, const Reading& reading) {
  return shortIdIn(readings, reading) + "  " + displayDateFormatter().string(reading.date()) + "  " +
         describeValues(reading);
}

}  // namespace cardiolith::tool
