#pragma once

#include <cardiolith/interop/import_plan.hpp>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "log/data_folder.hpp"
#include "render/progress_bar.hpp"

namespace cardiolith::tool {

// The largest file the web page uploads for import, 1 GiB: as large as a file the library reads at all,
// which a phone's health export of many years stays under.
inline constexpr std::uint64_t maxImportFileBytes = std::uint64_t{1} << 30;

// One file to import: where its bytes are, and the name messages give it (the name typed on the command
// line, or the name of the file the page uploaded).
struct ImportSource {
  std::filesystem::path path;
  std::string name;
};

// How the files are read and what the log takes of them, as `cardiolith import` options say.
struct ImportSettings {
  // csv, tsv, json, fhir or health; found from the content when absent.
  std::optional<std::string> format;
  // Import the valid rows and leave out the invalid ones, instead of importing nothing.
  bool skipInvalid = false;
  // Keep values outside the usual human range.
  bool force = false;
  // Make the tags the log lacks instead of refusing the import.
  bool createTags = false;
  std::vector<std::string> columns;
  std::optional<std::string> dateFormat;
  // What a refused import tells the person to do, in the words of where they are: the command line's
  // options by default, the page's checkboxes and fields there.
  struct Remedies {
    std::string_view unknownTags = "Add them with cardiolith tags add TITLE, or import with --create-tags.";
    std::string_view invalidRows =
        "Correct the file, or add --skip-invalid to import the rest (--force keeps implausible values).";
    // What messages call the choices of columns and date format, which the readers name as options.
    std::string_view columns = "--columns";
    std::string_view dateFormat = "--date-format";
  } remedies;
};

// Why no file could be read with these columns and date format: a column that names no role, columns
// without a date and both pressures, a date pattern ICU rejects; nothing when they may be tried. Says so
// as the readers would, in the remedies' words.
[[nodiscard]] std::optional<std::string> importChoicesFault(const ImportSettings& settings);

// What the files would add to the log, read under a shared lock; changes nothing. `progress`, when given,
// shows the bytes read. ToolError when a file can't be read at all (naming it) or the date format is bad.
[[nodiscard]] interop::ImportPlan previewImport(const DataFolder& folder,
                                                const std::vector<ImportSource>& sources,
                                                const ImportSettings& settings,
                                                ProgressBar* progress = nullptr);

// Why importing this plan would be refused: tags the log lacks (without createTags), or invalid rows
// (without skipInvalid), listed; nothing when it may go ahead.
[[nodiscard]] std::optional<std::string> importRefusal(const interop::ImportPlan& plan,
                                                       const ImportSettings& settings);

// Reads the files under the exclusive folder lock and, unless importRefusal objects, adds their readings
// (creating the tags first, when asked) as one change, saved durably with its undo record before
// returning. ToolError as previewImport, with importRefusal's message, or when the log can't be saved; the
// log is then as it was.
[[nodiscard]] interop::ImportPlan importReadings(const DataFolder& folder,
                                                 const std::vector<ImportSource>& sources,
                                                 const ImportSettings& settings,
                                                 ProgressBar* progress = nullptr);

// The one-line account of a plan: "Imported: 3 added, 1 already there, 0 skipped, 0 refused." or, for a
// dry run, "Dry run, nothing changed: 3 would be added, …".
[[nodiscard]] std::string importAccount(const interop::ImportPlan& plan, bool dryRun);

}  // namespace cardiolith::tool
