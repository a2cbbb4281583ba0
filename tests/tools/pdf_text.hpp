#pragma once

#include <filesystem>
#include <string>

#include "tool_test.hpp"

namespace cardiolith::tool::testing {

// The text of a PDF file as poppler's pdftotext reads it, in reading order with the page's layout kept: what
// a person selecting the text would get. Fails the test when pdftotext cannot read the file.
inline std::string pdfText(const std::filesystem::path& pdf) {
  return shellOutput("pdftotext -layout '" + pdf.string() + "' - 2>&1");  // Debian package poppler-utils
}

}  // namespace cardiolith::tool::testing
