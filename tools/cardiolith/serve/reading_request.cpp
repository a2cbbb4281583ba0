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

}  // namespace

NewReading parseNewReading(std::string_view body) {
  // The whole-document parser: it rejects malformed JSON and anything after the object before a member is
  // read.
  simdjson::dom::parser parser;
  simdjson::dom::element document;
  check(parser.parse(body.data(), body.size()).get(document), "body", "one JSON object");
  simdjson::dom::object object;
  check(document.get_object().get(object), "body", "a JSON object");

  NewReading reading;
  std::string at;
  bool hasSystolic = false, hasDiastolic = false, hasPulse = false;
  for (const auto [key, value] : object) {
    if (key == "systolic") {
      reading.systolic = integerOf(value, key);
      hasSystolic = true;
    } else if (key == "diastolic") {
      reading.diastolic = integerOf(value, key);
      hasDiastolic = true;
    } else if (key == "pulse") {
      reading.pulse = integerOf(value, key);
      hasPulse = true;
    } else if (key == "at") {
      at = textOf(value, key);
    } else if (key == "note") {
      std::string note = textOf(value, key);
      if (!note.empty()) reading.note = std::move(note);
    } else if (key == "tags") {
      simdjson::dom::array tags;
      check(value.get_array().get(tags), key, "a list of tag titles");
      for (const auto tag : tags) reading.tags.push_back(textOf(tag, key));
    } else if (key == "force") {
      check(value.get_bool().get(reading.force), key, "true or false");
    } else {
      throw MalformedRequest("unknown member \"" + std::string(key) +
                             "\"; expected systolic, diastolic, pulse, at, note, tags, force");
    }
  }
  if (!hasSystolic || !hasDiastolic || !hasPulse) {
    throw MalformedRequest(
        "systolic, diastolic and pulse are all needed, as whole numbers in mmHg and beats "
        "per minute");
  }
  // Read once the whole body is: "force" may come after "at" and lets a future date through.
  if (!at.empty()) reading.date = DateReader::current().readingTime(at, "Date and time", reading.force);
  return reading;
}

}  // namespace cardiolith::tool::serve
