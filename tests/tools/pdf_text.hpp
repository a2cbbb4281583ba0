#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>

namespace cardiolith::tool::testing {

// The text of a PDF file as poppler's pdftotext reads it, in reading order with the page's layout kept: what
// a person selecting the text would get. Fails the test when pdftotext cannot read the file.
inline std::string pdfText(const std::filesystem::path& pdf) {
  const std::string command = "pdftotext -layout '" + pdf.string() + "' - 2>&1";
  std::string text;
  FILE* pipe = ::popen(command.c_str(), "r");
  if (!pipe) {
    ADD_FAILURE() << "cannot run pdftotext (Debian package poppler-utils)";
    return text;
  }
  char buffer[4096];
  for (std::size_t read; (read = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) text.append(buffer, read);
  EXPECT_EQ(::pclose(pipe), 0) << text;
  return text;
}

}  // namespace cardiolith::tool::testing
