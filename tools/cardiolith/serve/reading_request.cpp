#include "serve/reading_request.hpp"

#include <simdjson.h>

#include <cstdint>
#include <string>

#include "input/date_input.hpp"

namespace cardiolith::tool::serve {
namespace {

void check(simdjson::error_code error, std::string_view member, std::string_view expected) {
  if (error) {
    throw MalformedRequest("\"" + std::string(member) + "\": expected " + std::string(expected) + " (" +
                           simdjson::error_message(error) + ")");
  }
}

std::int64_t integerOf(simdjson::dom::element value, std::string_view member) {
  std::int64_t number = 0;
  check(value.get_int64().get(number), member, "a whole number");
  return number;
}

std::string textOf(simdjson::dom::element value, std::string_view member) {
  std::string_view text;
  check(value.get_string().get(text), member, "a text");
  return std::string(text);
}

// The members a reading's body may have, as they were found.
struct ReadingFields {
  std::optional<std::int64_t> systolic, diastolic, pulse;
  std::optional<std::string> at, note;
  std::optional<std::vector<std::string>> tags;
  bool force = false;
};

ReadingFields readFields(std::string_view body) {
  // The whole-document parser: it rejects malformed JSON and anything after the object before a member is
  // read.
  simdjson::dom::parser parser;
  simdjson::dom::element document;
  check(parser.parse(body.data(), body.size()).get(document), "body", "one JSON object");
  simdjson::dom::object object;
  check(document.get_object().get(object), "body", "a JSON object");

  ReadingFields fields;
  for (const auto [key, value] : object) {
    if (key == "systolic") {
      fields.systolic = integerOf(value, key);
    } else if (key == "diastolic") {
      fields.diastolic = integerOf(value, key);
    } else if (key == "pulse") {
      fields.pulse = integerOf(value, key);
    } else if (key == "at") {
      fields.at = textOf(value, key);
    } else if (key == "note") {
      fields.note = textOf(value, key);
    } else if (key == "tags") {
      simdjson::dom::array tags;
      check(value.get_array().get(tags), key, "a list of tag titles");
      fields.tags.emplace();
      for (const auto tag : tags) fields.tags->push_back(textOf(tag, key));
    } else if (key == "force") {
      check(value.get_bool().get(fields.force), key, "true or false");
    } else {
      throw MalformedRequest("unknown member \"" + std::string(key) +
                             "\"; expected systolic, diastolic, pulse, at, note, tags, force");
    }
  }
  return fields;
}

// Read once the whole body is: "force" may come after "at" and lets a future date through.
std::optional<Date> dateOf(const ReadingFields& fields) {
  if (!fields.at || fields.at->empty()) return std::nullopt;
  return DateReader::current().readingTime(*fields.at, "Date and time", fields.force);
}

// The options of `add` and `edit` that do what these fields do, after the command and its arguments.
std::vector<std::string> commandOf(std::vector<std::string> command, const ReadingFields& fields) {
  if (fields.systolic && fields.diastolic) {
    command.push_back(std::to_string(*fields.systolic) + "/" + std::to_string(*fields.diastolic));
  }
  if (fields.pulse) command.insert(command.end(), {"--pulse", std::to_string(*fields.pulse)});
  if (fields.at && !fields.at->empty()) command.insert(command.end(), {"--at", *fields.at});
  if (fields.note) {
    if (fields.note->empty()) {
      if (command.front() == "edit") command.push_back("--no-note");
    } else {
      command.insert(command.end(), {"--note", *fields.note});
    }
  }
  for (const auto& tag : fields.tags.value_or(std::vector<std::string>{}))
    command.insert(command.end(), {"--tag", tag});
  if (fields.force) command.push_back("--force");
  return command;
}

}  // namespace

PageAddition parseNewReading(std::string_view body) {
  const ReadingFields fields = readFields(body);
  if (!fields.systolic || !fields.diastolic || !fields.pulse) {
    throw MalformedRequest(
        "systolic, diastolic and pulse are all needed, as whole numbers in mmHg and beats "
        "per minute");
  }
  PageAddition addition;
  NewReading& reading = addition.reading;
  reading.systolic = *fields.systolic;
  reading.diastolic = *fields.diastolic;
  reading.pulse = *fields.pulse;
  if (fields.note && !fields.note->empty()) reading.note = fields.note;
  reading.tags = fields.tags.value_or(std::vector<std::string>{});
  reading.force = fields.force;
  reading.date = dateOf(fields);
  addition.command = commandOf({"add"}, fields);
  return addition;
}

PageEdit parseReadingEdit(std::string_view id, std::string_view body) {
  const ReadingFields fields = readFields(body);
  PageEdit page;
  ReadingEdit& edit = page.edit;
  edit.id = std::string(id);
  edit.systolic = fields.systolic;
  edit.diastolic = fields.diastolic;
  edit.pulse = fields.pulse;
  edit.date = dateOf(fields);
  if (fields.note) {
    edit.removeNote = fields.note->empty();
    if (!edit.removeNote) edit.note = fields.note;
  }
  edit.force = fields.force;
  page.tags = fields.tags;
  if (!edit.changesSomething() && !page.tags) {
    throw MalformedRequest(
        "nothing to change; give one or more of systolic, diastolic, pulse, at, note, tags");
  }
  page.command = commandOf({"edit", edit.id}, fields);
  return page;
}

}  // namespace cardiolith::tool::serve
