#pragma once

#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "cardiolith/interop/reader.hpp"

namespace cardiolith::interop {

// The kinds of file an import reads.
enum class ImportFormat {
  table,         // CSV, TSV or a spreadsheet's separated text, the separator found from the header
  tsv,           // separated by tabs only
  document,      // the log's own readings document (JSON)
  fhir,          // FHIR R4 Bundle or NDJSON
  healthExport,  // a phone health app's export.xml, or the export.zip that holds it
};

// The format for a name given on a command line: csv, tsv, json, fhir or health; nothing for others.
[[nodiscard]] std::optional<ImportFormat> importFormatNamed(std::string_view name);

// The format the first bytes of a file show: a zip archive or XML is a health export, JSON naming a
// "resourceType" is FHIR, other JSON the readings document, anything else a table.
[[nodiscard]] ImportFormat detectImportFormat(std::string_view head);

// One file opened for import: its format found (or given), a zip archive's export.xml read straight from
// the archive, never unpacked to disk.
class ImportFile {
 public:
  // Throws ImportError when the file cannot be opened, or a zip archive holds no export.xml, and what the
  // reader's construction throws; the message leaves naming the file to the caller.
  ImportFile(const std::filesystem::path& path, std::optional<ImportFormat> format,
             const ReaderOptions& options);
  ~ImportFile();
  ImportFile(const ImportFile&) = delete;
  ImportFile& operator=(const ImportFile&) = delete;

  ImportFormat format() const { return format_; }
  // The bytes the reader reads in all (a zip member's uncompressed size), for a progress display.
  std::uint64_t size() const { return size_; }
  ReadingReader& reader() { return *reader_; }

 private:
  struct Archive;
  ImportFormat format_;
  std::uint64_t size_ = 0;
  std::unique_ptr<Archive> archive_;
  std::ifstream file_;
  std::unique_ptr<ReadingReader> reader_;
};

}  // namespace cardiolith::interop
