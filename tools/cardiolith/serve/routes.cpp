#include "serve/routes.hpp"

#include <algorithm>
#include <cardiolith/analysis/home_monitoring.hpp>
#include <cardiolith/analysis/plausibility.hpp>
#include <cardiolith/analysis/readings_summary.hpp>
#include <charconv>
#include <cmath>
#include <memory>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "commands/add_reading.hpp"
#include "commands/delete_readings.hpp"
#include "commands/edit_reading.hpp"
#include "commands/import_readings.hpp"
#include "commands/undo_change.hpp"
#include "input/date_input.hpp"
#include "input/period_options.hpp"
#include "log/change_history.hpp"
#include "log/tag_list.hpp"
#include "render/cairo_output.hpp"
#include "render/category_text.hpp"
#include "render/home_report.hpp"
#include "render/json_writer.hpp"
#include "render/log_json.hpp"
#include "render/period_chart.hpp"
#include "serve/api_answers.hpp"
#include "serve/reading_request.hpp"
#include "serve/request_guard.hpp"
#include "serve/transfer_routes.hpp"
#include "serve/web_assets.hpp"
#include "tool_error.hpp"

namespace cardiolith::tool::serve {
namespace {

constexpr const char* tokenHeader = "X-Cardiolith-Token";
constexpr std::string_view tokenPlaceholder = "{{TOKEN}}";

std::optional<std::string_view> header(const httplib::Request& request, const char* name) {
  if (!request.has_header(name)) return std::nullopt;
  const auto& headers = request.headers;
  return std::string_view(headers.find(name)->second);
}

void setSecurityHeaders(httplib::Response& response) {
  response.set_header("Content-Security-Policy",
                      "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; "
                      "connect-src 'self'; form-action 'self'; base-uri 'none'; frame-ancestors 'none'");
  response.set_header("X-Content-Type-Options", "nosniff");
  response.set_header("Referrer-Policy", "no-referrer");
}

// The period of a query as `list` chooses it; no parameters: everything.
void listReadings(const ServeContext& context, const httplib::Request& request, httplib::Response& response) {
  const PeriodOptions options = periodOptionsOf(request);
  const Period period = choosePeriod(options, DateReader::current(), std::nullopt);
  const TagList tags(context.folder);
  ReadingsLog log(context.folder, ReadingsLog::Access::read);
  auto selection = selectReadings(log.readings(), period, options, tags);
  std::stable_sort(selection.begin(), selection.end(),
                   [](const auto& a, const auto& b) { return a->date() > b->date(); });
  std::ostringstream out;
  writeReadingsJson(out, selection, tags);
  response.set_content(out.str(), jsonType);
}

// The summary of the last `days` whole days (default 7), or of from/to (to defaults to now), against the
// period before, as `summary --json` writes it.
void summarise(const ServeContext& context, const httplib::Request& request, httplib::Response& response) {
  const auto dates = DateReader::current();
  PeriodOptions choice;
  choice.from = parameter(request, "from");
  if (choice.from) {
    choice.to = parameter(request, "to");
  } else {
    choice.last = parameter(request, "days").value_or("7");
  }
  Period period = choosePeriod(choice, dates, std::nullopt);
  if (!std::isfinite(period.end.timeIntervalSinceReferenceDate())) period.end = dates.now();
  ReadingsLog log(context.folder, ReadingsLog::Access::read);
  const auto summary = ReadingsSummarizer::summarise(log.readings(), period.start, period.summaryEnd());
  std::ostringstream out;
  writeSummaryJson(out, summary, period, countComparedReadings(log.readings(), period, dates.calendar()));
  response.set_content(out.str(), jsonType);
}

void listTags(const ServeContext& context, httplib::Response& response) {
  const TagList tags(context.folder);
  std::ostringstream out;
  JsonWriter json(out);
  json.beginObject().key("tags").beginArray();
  for (const auto& tag : tags.manager().tags()) json.string(tag.title);
  json.endArray().endObject();
  response.set_content(out.str(), jsonType);
}

// The reading as `list --json` writes it, alone in its list, and for values in the crisis range the advice
// that `add` and `edit` print, which the page shows beside the form.
void answerReading(const ServeContext& context, const std::shared_ptr<Reading>& reading,
                   httplib::Response& response) {
  const TagList tags(context.folder);
  std::ostringstream out;
  JsonWriter json(out);
  json.beginObject().key("readings").beginArray();
  writeReadingJson(json, *reading, tags);
  json.endArray();
  if (isHypertensiveCrisis(reading->systolic(), reading->diastolic()))
    json.key("advice").string(kCrisisAdvice);
  json.endObject();
  response.set_content(out.str(), jsonType);
}

// Each change of the page is one step of the undo history, named by the command line that makes it.
void startChange(const std::vector<std::string>& command) {
  ChangeHistory::startChange(retypableCommandLine(command));
}

void addFromBody(const ServeContext& context, const std::string& body, httplib::Response& response) {
  const PageAddition addition = parseNewReading(body);
  startChange(addition.command);
  answerReading(context, addReading(context.folder, addition.reading).reading, response);
  response.status = 201;
}

// The page sends every tag the reading is to carry; `edit` adds some and removes others.
void resolveTagSet(const ServeContext& context, PageEdit& page) {
  if (!page.tags) return;
  const TagList tags(context.folder);
  std::set<UUID> kept;
  for (const auto& title : *page.tags) kept.insert(tags.find(title).id);
  page.edit.tags = *page.tags;
  for (const auto& tag : tags.manager().tags()) {
    if (!kept.contains(tag.id)) page.edit.untags.push_back(tag.title);
  }
}

void editFromBody(const ServeContext& context, const httplib::Request& request, const std::string& body,
                  httplib::Response& response) {
  PageEdit page = parseReadingEdit(request.matches[1].str(), body);
  resolveTagSet(context, page);
  startChange(page.command);
  answerReading(context, editReading(context.folder, page.edit).reading, response);
}

void deleteReading(const ServeContext& context, const httplib::Request& request,
                   httplib::Response& response) {
  const std::string id = request.matches[1].str();
  startChange({"delete", id});
  const auto deleted = deleteReadings(context.folder, {id});
  std::ostringstream out;
  JsonWriter(out).beginObject().key("message").string(deleted.front()).endObject();
  response.set_content(out.str(), jsonType);
}

void undoLast(const ServeContext& context, httplib::Response& response) {
  const UndoneChange undone = undoLastChange(context.folder);
  std::ostringstream out;
  JsonWriter json(out);
  json.beginObject().key("undid").string(undone.commandLine).key("changes").beginArray();
  for (const auto& line : undone.changes) json.string(line);
  json.endArray().endObject();
  response.set_content(out.str(), jsonType);
}

// The chart of the last ?days= days (default 30), ?width= pixels wide, as SVG, as `chart` draws it; 404 when
// the period has no readings, which the page takes as "no chart".
void chartPicture(const ServeContext& context, const httplib::Request& request, httplib::Response& response) {
  const auto dates = DateReader::current();
  PeriodOptions choice;
  choice.last = parameter(request, "days").value_or("30");
  Period period = choosePeriod(choice, dates, std::nullopt);
  ReadingsLog log(context.folder, ReadingsLog::Access::read);
  const auto selection = filtered(log.readings(), period.start, period.end);
  if (selection.empty()) return answerError(response, 404, "no readings to chart in that period");
  const auto days = dates.calendar().wholeDays(period.start, period.summaryEnd()).value_or(1);
  ChartRequest chart = periodChart(selection, period, days);
  // As wide as the page shows it, so its text stays readable on a phone; out-of-range widths are clamped.
  if (const auto width = parameter(request, "width")) {
    double pixels = 0;
    std::from_chars(width->data(), width->data() + width->size(), pixels);
    chart.width = std::clamp(pixels, 320.0, 1200.0);
  }
  response.set_content(renderImage(ImageFormat::svg, chart.width, chartHeight(chart),
                                   [&](cairo_t* cairo) { drawChart(cairo, chart); }),
                       "image/svg+xml");
}

// The home-monitoring report for printing, as `report --format html` writes it, of the last 7 days or
// ?last=, or ?from= and ?to=. It is a document of its own without scripts; its style and chart are inline.
void printableReport(const ServeContext& context, const httplib::Request& request,
                     httplib::Response& response) {
  const auto [from, to] = reportDays(parameter(request, "from"), parameter(request, "to"),
                                     parameter(request, "last").value_or("7d"), DateReader::current());
  ReadingsLog log(context.folder, ReadingsLog::Access::read);
  const HomeReportDocument report{HomeMonitoringAnalyzer::analyse(log.readings(), from, to, {}), from, to,
                                  std::nullopt};
  response.headers.erase("Content-Security-Policy");
  response.set_header("Content-Security-Policy",
                      "default-src 'none'; style-src 'unsafe-inline'; img-src data:; base-uri 'none'; "
                      "form-action 'none'; frame-ancestors 'none'");
  response.set_content(reportHtml(report), "text/html; charset=utf-8");
}

void serveAsset(const ServeContext& context, const httplib::Request& request, httplib::Response& response) {
  const auto asset = findWebAsset(request.path);
  if (!asset) return answerError(response, 404, "no such page: " + request.path);
  std::string body(asset->body);
  if (const auto at = body.find(tokenPlaceholder); at != std::string::npos) {
    body.replace(at, tokenPlaceholder.size(), context.token);
    response.set_header("Cache-Control", "no-store");
  }
  response.set_content(body, std::string(asset->contentType));
}

// Why a request's body is refused before it is read, or nullopt. The server's own limit is the upload's,
// which only the import route may use; every other route takes small JSON at most. A body without a
// length (chunked) is held to maxBodyBytes as it is read, by withSmallBody.
std::optional<Refusal> bodyRefusal(const httplib::Request& request) {
  if (request.path == importPath) return std::nullopt;
  const auto length = header(request, "Content-Length");
  if (!length) return std::nullopt;
  std::size_t bytes = 0;
  const auto [end, error] = std::from_chars(length->data(), length->data() + length->size(), bytes);
  if (error != std::errc{} || end != length->data() + length->size() || bytes > maxBodyBytes)
    return Refusal{413, "the request body is too large"};
  return std::nullopt;
}

}  // namespace

void installRoutes(httplib::Server& server, ServeContext& context) {
  server.set_payload_max_length(maxImportFileBytes);
  server.set_pre_routing_handler([&context](const httplib::Request& request, httplib::Response& response) {
    setSecurityHeaders(response);
    const RequestFacts facts{request.method, header(request, "Host"), header(request, "Origin"),
                             header(request, tokenHeader)};
    auto refusal = refusalOf(facts, context.port, context.token);
    if (!refusal) refusal = bodyRefusal(request);
    if (refusal) {
      answerError(response, refusal->status, refusal->message);
      // The body, if any, stays unread: the connection can't carry another request.
      response.set_header("Connection", "close");
      return httplib::Server::HandlerResponse::Handled;
    }
    return httplib::Server::HandlerResponse::Unhandled;
  });
  server.set_error_handler([](const httplib::Request& request, httplib::Response& response) {
    if (!response.body.empty()) return;
    // Set already when the request reached routing; not when it failed before (a body over the limit).
    if (!response.has_header("X-Content-Type-Options")) setSecurityHeaders(response);
    const std::string message = response.status == 404 ? "no such page or API: " + request.path
                                : response.status == 405
                                    ? request.method + " is not allowed on " + request.path
                                : response.status == 413 ? "the request body is too large"
                                                         : "the request could not be read";
    answerError(response, response.status, message);
  });
  server.set_exception_handler(
      [](const httplib::Request&, httplib::Response& response, std::exception_ptr error) {
        std::string message = "unexpected error";
        try {
          if (error) std::rethrow_exception(error);
        } catch (const std::exception& caught) {
          message += ": " + std::string(caught.what());
        } catch (...) {
        }
        answerError(response, 500, message);
      });

  server.Get("/api/readings", api(context.logAccess, [&context](const auto& request, auto& response) {
               listReadings(context, request, response);
             }));
  server.Post("/api/readings",
              withSmallBody(context.logAccess, [&context](const auto&, const auto& body, auto& response) {
                addFromBody(context, body, response);
              }));
  // An id is a reading's UUID, or a unique start of it of at least four characters, as `edit` takes it.
  constexpr const char* oneReading = R"(/api/readings/([0-9A-Za-z-]+))";
  server.Patch(oneReading, withSmallBody(context.logAccess,
                                         [&context](const auto& request, const auto& body, auto& response) {
                                           editFromBody(context, request, body, response);
                                         }));
  server.Delete(oneReading, api(context.logAccess, [&context](const auto& request, auto& response) {
                  deleteReading(context, request, response);
                }));
  server.Post("/api/undo", api(context.logAccess,
                               [&context](const auto&, auto& response) { undoLast(context, response); }));
  server.Get("/api/summary", api(context.logAccess, [&context](const auto& request, auto& response) {
               summarise(context, request, response);
             }));
  server.Get("/api/chart.svg", api(context.logAccess, [&context](const auto& request, auto& response) {
               chartPicture(context, request, response);
             }));
  server.Get("/report", api(context.logAccess, [&context](const auto& request, auto& response) {
               printableReport(context, request, response);
             }));
  server.Get("/api/tags", api(context.logAccess,
                              [&context](const auto&, auto& response) { listTags(context, response); }));
  installTransferRoutes(server, context);
  for (const char* path : {"/", "/app.js", "/style.css"}) {
    server.Get(path, [&context](const httplib::Request& request, httplib::Response& response) {
      serveAsset(context, request, response);
    });
  }
}

}  // namespace cardiolith::tool::serve
