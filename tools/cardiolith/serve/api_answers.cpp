#include "serve/api_answers.hpp"

#include <sstream>

#include "render/json_writer.hpp"

namespace cardiolith::tool::serve {

void answerError(httplib::Response& response, int status, std::string_view message) {
  std::ostringstream out;
  JsonWriter(out).beginObject().key("error").string(message).endObject();
  response.status = status;
  response.set_content(out.str(), jsonType);
}

std::optional<std::string> parameter(const httplib::Request& request, const char* name) {
  if (!request.has_param(name)) return std::nullopt;
  return request.get_param_value(name);
}

PeriodOptions periodOptionsOf(const httplib::Request& request) {
  PeriodOptions options;
  options.from = parameter(request, "from");
  options.to = parameter(request, "to");
  options.last = parameter(request, "last");
  return options;
}

}  // namespace cardiolith::tool::serve
