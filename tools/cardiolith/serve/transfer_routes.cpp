#include "serve/transfer_routes.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "commands/export_readings.hpp"
#include "commands/import_readings.hpp"
#include "log/change_history.hpp"
#include "log/tag_list.hpp"
#include "render/json_writer.hpp"
#include "render/log_json.hpp"
#include "serve/api_answers.hpp"
#include "serve/upload_file.hpp"

namespace cardiolith::tool::serve {
namespace {

bool flag(const httplib::Request& request, const char* name) {
  const auto value = parameter(request, name);
  if (!value || *value == "false") return false;
  if (*value == "true") return true;
  throw MalformedRequest("\"" + std::string(name) + "\": expected true or false, found \"" + *value + "\"");
}

// The import's settings from the query, and the command line that would make the same import.
ImportSettings settingsOf(const httplib::Request& request, std::vector<std::string>& command) {
  ImportSettings settings;
  settings.remedies = {"Tick \"Create the tags the log lacks\", or add them with cardiolith tags add TITLE.",
                       "Correct the file, or tick \"Import the valid rows, leave out the invalid ones\" "
                       "(\"Keep unusual values "
                       "exactly as in the file\" keeps implausible values).",
                       "More choices › Columns", "More choices › Date format"};
  settings.format = parameter(request, "format");
  if (settings.format) {
    static constexpr std::array<std::string_view, 5> formats{"csv", "tsv", "json", "fhir", "health"};
    if (std::find(formats.begin(), formats.end(), *settings.format) == formats.end())
      throw MalformedRequest("\"format\": expected csv, tsv, json, fhir or health, found \"" +
                             *settings.format + "\"");
    command.insert(command.end(), {"--format", *settings.format});
  }
  const struct {
    bool* value;
    const char* parameter;
    const char* option;
  } flags[] = {{&settings.skipInvalid, "skipInvalid", "--skip-invalid"},
               {&settings.force, "force", "--force"},
               {&settings.createTags, "createTags", "--create-tags"}};
  for (const auto& each : flags) {
    *each.value = flag(request, each.parameter);
    if (*each.value) command.push_back(each.option);
  }
  // Split at the commas as the command line splits --columns; the readers ignore spaces around a role.
  if (const auto columns = parameter(request, "columns")) {
    std::istringstream roles(*columns);
    for (std::string role; std::getline(roles, role, ',');) settings.columns.push_back(role);
    // getline drops an empty last part: kept, it is refused as no role instead of passing unnoticed.
    if (columns->empty() || columns->back() == ',') settings.columns.emplace_back();
    command.insert(command.end(), {"--columns", *columns});
  }
  settings.dateFormat = parameter(request, "dateFormat");
  if (settings.dateFormat) command.insert(command.end(), {"--date-format", *settings.dateFormat});
  if (const auto fault = importChoicesFault(settings)) throw MalformedRequest(*fault);
  return settings;
}

void writePlanJson(std::ostream& out, const interop::ImportPlan& plan, const TagList& tags, bool dryRun,
                   const std::optional<std::string>& refusal) {
  JsonWriter json(out);
  json.beginObject();
  json.key("dryRun").boolean(dryRun);
  json.key("account").string(importAccount(plan, dryRun));
  json.key("added").beginArray();
  for (const auto& reading : plan.added) writeReadingJson(json, *reading, tags);
  json.endArray();
  json.key("alreadyThere").integer(static_cast<std::int64_t>(plan.alreadyThere));
  json.key("skipped").beginObject();
  for (const auto& [reason, count] : plan.skipped) json.key(reason).integer(static_cast<std::int64_t>(count));
  json.endObject();
  json.key("refused").beginArray();
  for (const auto& row : plan.refused)
    json.beginObject().key("position").string(row.position).key("reason").string(row.reason).endObject();
  json.endArray();
  json.key("newTags").beginArray();
  for (const auto& tag : plan.newTags) json.string(tag.title);
  json.endArray();
  json.key("unknownTags").beginArray();
  for (const auto& title : plan.unknownTags) json.string(title);
  json.endArray();
  json.key("refusal").stringOrNull(refusal);
  json.endObject();
}

// Streams the body into a file before taking the log's mutex, so a slow upload holds up no one else.
void importUpload(ServeContext& context, const httplib::Request& request, httplib::Response& response,
                  const httplib::ContentReader& reader) {
  answering(response, [&] {
    if (request.is_multipart_form_data())
      throw MalformedRequest("send the file's bytes as the body, not as a form (multipart/form-data)");
    const std::string name = parameter(request, "name").value_or("upload");
    std::vector<std::string> command{"import", name};
    const ImportSettings settings = settingsOf(request, command);
    const bool dryRun = flag(request, "dryRun");
    UploadFile upload;
    const bool whole =
        reader([&upload](const char* data, std::size_t size) { return upload.append(data, size); });
    upload.finish();
    if (!whole) throw MalformedRequest("the upload of \"" + name + "\" ended before the whole file arrived");
    if (upload.size() == 0) throw MalformedRequest("the uploaded file \"" + name + "\" is empty");

    const std::lock_guard hold(context.logAccess);
    const std::vector<ImportSource> sources{{upload.path(), name}};
    std::ostringstream out;
    if (dryRun) {
      const auto plan = previewImport(context.folder, sources, settings);
      writePlanJson(out, plan, TagList(context.folder), true, importRefusal(plan, settings));
    } else {
      ChangeHistory::startChange(retypableCommandLine(command));
      const auto plan = importReadings(context.folder, sources, settings);
      writePlanJson(out, plan, TagList(context.folder), false, std::nullopt);
    }
    response.set_content(out.str(), jsonType);
  });
}

// "cardiolith-readings-last-7d.csv": the period's parameters, with nothing but letters, digits and dashes,
// so that the name is safe in a header and on any file system.
std::string downloadName(const PeriodOptions& period, std::string_view extension) {
  std::string name = "cardiolith-readings";
  const auto append = [&name](std::string_view part) {
    name += '-';
    for (const char c : part) name += std::isalnum(static_cast<unsigned char>(c)) ? c : '-';
  };
  if (period.last) append("last-" + *period.last);
  if (period.from) append("from-" + *period.from);
  if (period.to) append("to-" + *period.to);
  if (!period.last && !period.from && !period.to) append("all");
  return name + std::string(extension);
}

void exportDownload(const ServeContext& context, const httplib::Request& request,
                    httplib::Response& response) {
  struct Kind {
    std::string_view format, extension, contentType;
  };
  static constexpr std::array<Kind, 4> kinds{
      {{"csv", ".csv", "text/csv; charset=utf-8"},
       {"tsv", ".tsv", "text/tab-separated-values; charset=utf-8"},
       {"json", ".json", "application/json; charset=utf-8"},
       {"fhir", ".fhir.json", "application/fhir+json; charset=utf-8"}}};
  const std::string format = parameter(request, "format").value_or("csv");
  const auto kind =
      std::find_if(kinds.begin(), kinds.end(), [&](const Kind& k) { return k.format == format; });
  if (kind == kinds.end())
    throw MalformedRequest("\"format\": expected csv, tsv, json or fhir, found \"" + format + "\"");
  const PeriodOptions period = periodOptionsOf(request);
  const ExportedReadings exported = exportReadings(context.folder, period, format);
  response.set_header("Content-Disposition",
                      "attachment; filename=\"" + downloadName(period, kind->extension) + "\"");
  response.set_content(exported.text, std::string(kind->contentType));
}

}  // namespace

void installTransferRoutes(httplib::Server& server, ServeContext& context) {
  server.Post(importPath, [&context](const httplib::Request& request, httplib::Response& response,
                                     const httplib::ContentReader& reader) {
    importUpload(context, request, response, reader);
  });
  server.Get("/api/export", api(context.logAccess, [&context](const auto& request, auto& response) {
               exportDownload(context, request, response);
             }));
}

}  // namespace cardiolith::tool::serve
