#include "commands/import_readings.hpp"

#include <cardiolith/interop/delimited.hpp>
#include <cardiolith/interop/import_file.hpp>
#include <cardiolith/platform/civil_time.hpp>
#include <filesystem>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "log/tag_list.hpp"
#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

// A reader's message with the options it names in the words of where the person is.
std::string inTheirWords(std::string message, const ImportSettings::Remedies& remedies) {
  for (const auto& [option, words] :
       {std::pair<std::string_view, std::string_view>{"--columns", remedies.columns},
        {"--date-format", remedies.dateFormat}}) {
    for (auto at = message.find(option); at != std::string::npos;
         at = message.find(option, at + words.size()))
      message.replace(at, option.size(), words);
  }
  return message;
}

std::string dateFormatFault(const ImportSettings& settings, const std::invalid_argument& error) {
  return inTheirWords(std::string("--date-format: ") + error.what(), settings.remedies);
}

// Reads every file into one plan.
interop::ImportPlan plannedImport(const std::vector<ImportSource>& sources, const ImportSettings& settings,
                                  const ReadingList& existing, const std::vector<Tag>& tags,
                                  ProgressBar* progress) {
  interop::ImportPlanner planner(existing, tags,
                                 {.force = settings.force, .createTags = settings.createTags});
  for (const auto& source : sources) {
    try {
      interop::ReaderOptions readerOptions{settings.columns, settings.dateFormat, nullptr};
      if (progress) readerOptions.progress = [progress](std::uint64_t done) { progress->update(done); };
      const auto format = settings.format ? interop::importFormatNamed(*settings.format) : std::nullopt;
      if (progress) {
        // Before the file is opened: opening reads its first block already.
        std::error_code unknown;
        const std::uintmax_t size = std::filesystem::file_size(source.path, unknown);
        progress->restart("Reading " + std::filesystem::path(source.name).filename().string(),
                          unknown ? 0 : size);
      }
      interop::ImportFile file(source.path, format, readerOptions);
      if (progress) progress->setTotal(file.size());  // an archive's member, not the archive
      planner.takeAll(file.reader(), source.name);
    } catch (const interop::ImportError& error) {
      throw ToolError("nothing imported: " + source.name + ": " +
                      inTheirWords(error.what(), settings.remedies));
    } catch (const std::invalid_argument& error) {  // a --date-format that ICU rejects
      throw ToolError(dateFormatFault(settings, error));
    }
  }
  interop::ImportPlan plan = std::move(planner).takePlan();
  for (auto& row : plan.refused) row.reason = inTheirWords(std::move(row.reason), settings.remedies);
  return plan;
}

}  // namespace

std::optional<std::string> importChoicesFault(const ImportSettings& settings) {
  try {
    if (!settings.columns.empty()) interop::checkColumns(settings.columns);
    if (settings.dateFormat) const DatePatternParser pattern(*settings.dateFormat);
  } catch (const interop::ImportError& error) {
    return inTheirWords(error.what(), settings.remedies);
  } catch (const std::invalid_argument& error) {
    return dateFormatFault(settings, error);
  }
  return std::nullopt;
}

interop::ImportPlan previewImport(const DataFolder& folder, const std::vector<ImportSource>& sources,
                                  const ImportSettings& settings, ProgressBar* progress) {
  ReadingsLog log(folder, ReadingsLog::Access::read);
  const TagList tags(folder);
  return plannedImport(sources, settings, log.readings(), tags.manager().tags(), progress);
}

std::optional<std::string> importRefusal(const interop::ImportPlan& plan, const ImportSettings& settings) {
  if (!plan.unknownTags.empty()) {
    std::string titles;
    for (const auto& title : plan.unknownTags) titles += (titles.empty() ? "\"" : ", \"") + title + "\"";
    return "nothing imported: the log has no tag titled " + titles + ".\n" +
           std::string(settings.remedies.unknownTags);
  }
  if (plan.refused.empty() || settings.skipInvalid) return std::nullopt;
  std::string message = "nothing imported: " + std::to_string(plan.refused.size()) +
                        (plan.refused.size() == 1 ? " row is" : " rows are") + " invalid:\n";
  constexpr std::size_t kListed = 20;
  for (std::size_t i = 0; i < plan.refused.size() && i < kListed; ++i)
    message += "  " + plan.refused[i].position + ": " + plan.refused[i].reason + "\n";
  if (plan.refused.size() > kListed)
    message += "  and " + std::to_string(plan.refused.size() - kListed) + " more\n";
  message += settings.remedies.invalidRows;
  return message;
}

interop::ImportPlan importReadings(const DataFolder& folder, const std::vector<ImportSource>& sources,
                                   const ImportSettings& settings, ProgressBar* progress) {
  ReadingsLog log(folder, ReadingsLog::Access::change);
  TagList tags(folder);
  interop::ImportPlan plan =
      plannedImport(sources, settings, log.readings(), tags.manager().tags(), progress);
  if (const auto refusal = importRefusal(plan, settings)) throw ToolError(*refusal);
  if (!plan.newTags.empty()) {
    tags.requireReadable();
    for (const auto& tag : plan.newTags) tags.manager().insert(tag);
    tags.finishSaving();  // before the readings that name the tags are saved
  }
  if (!plan.added.empty()) {
    auto& readings = log.readings();
    readings.insert(readings.end(), plan.added.begin(), plan.added.end());
    log.save();
  }
  return plan;
}

std::string importAccount(const interop::ImportPlan& plan, bool dryRun) {
  std::size_t skipped = 0;
  std::string reasons;
  for (const auto& [reason, count] : plan.skipped) {
    skipped += count;
    reasons += (reasons.empty() ? "" : ", ") + std::to_string(count) + " " + reason;
  }
  std::ostringstream text;
  text << (dryRun ? "Dry run, nothing changed: " : "Imported: ") << plan.added.size()
       << (dryRun ? " would be added, " : " added, ") << plan.alreadyThere << " already there, " << skipped
       << " skipped" << (reasons.empty() ? "" : " (" + reasons + ")") << ", " << plan.refused.size()
       << " refused.";
  return text.str();
}

}  // namespace cardiolith::tool
