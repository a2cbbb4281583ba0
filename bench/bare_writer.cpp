#include "bare_writer.hpp"

#include <charconv>
#include <cmath>
#include <cstring>
#include <stdexcept>
#include <string_view>

namespace cardiolith::bench {
namespace {

// Length of the well-formed UTF-8 sequence starting at text[i] (a byte >= 0x80), or 0 when it is not one:
// no overlong forms, no surrogates, nothing above U+10FFFF.
std::size_t utf8SequenceLength(std::string_view text, std::size_t i) noexcept {
  const auto byte = [&](std::size_t k) { return static_cast<unsigned char>(text[k]); };
  const auto continuation = [&](std::size_t k) { return k < text.size() && (byte(k) & 0xC0) == 0x80; };
  const unsigned char lead = byte(i);
  if (lead >= 0xC2 && lead <= 0xDF) return continuation(i + 1) ? 2 : 0;
  if (lead >= 0xE0 && lead <= 0xEF) {
    if (!continuation(i + 1) || !continuation(i + 2)) return 0;
    if (lead == 0xE0 && byte(i + 1) < 0xA0) return 0;   // overlong
    if (lead == 0xED && byte(i + 1) >= 0xA0) return 0;  // surrogate
    return 3;
  }
  if (lead >= 0xF0 && lead <= 0xF4) {
    if (!continuation(i + 1) || !continuation(i + 2) || !continuation(i + 3)) return 0;
    if (lead == 0xF0 && byte(i + 1) < 0x90) return 0;   // overlong
    if (lead == 0xF4 && byte(i + 1) >= 0x90) return 0;  // above U+10FFFF
    return 4;
  }
  return 0;
}

class Writer {
 public:
  explicit Writer(std::size_t expectedSize) { out_.reserve(expectedSize); }

  void raw(std::string_view text) { out_.append(text); }

  void string(std::string_view text) {
    out_ += '"';
    std::size_t runStart = 0;
    std::size_t i = 0;
    while (i < text.size()) {
      const auto c = static_cast<unsigned char>(text[i]);
      if (c >= 0x80) {
        const std::size_t length = utf8SequenceLength(text, i);
        if (length == 0) throw std::invalid_argument("text is not UTF-8");
        i += length;
        continue;
      }
      if (c >= 0x20 && c != '"' && c != '\\') {
        ++i;
        continue;
      }
      out_.append(text.substr(runStart, i - runStart));
      escape(static_cast<char>(c));
      runStart = ++i;
    }
    out_.append(text.substr(runStart));
    out_ += '"';
  }

  void integer(std::int64_t value) {
    char buffer[24];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    out_.append(buffer, result.ptr);
  }

  void number(double value) {
    if (!std::isfinite(value)) throw std::invalid_argument("date is not a finite number");
    char buffer[32];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    out_.append(buffer, result.ptr);
  }

  void uuid(const UuidBytes& uuid) {
    char buffer[38];
    buffer[0] = '"';
    writeUuid(uuid, buffer + 1);
    buffer[37] = '"';
    out_.append(buffer, sizeof buffer);
  }

  std::string take() { return std::move(out_); }

 private:
  void escape(char c) {
    switch (c) {
      case '"':
        out_ += "\\\"";
        return;
      case '\\':
        out_ += "\\\\";
        return;
      case '\b':
        out_ += "\\b";
        return;
      case '\f':
        out_ += "\\f";
        return;
      case '\n':
        out_ += "\\n";
        return;
      case '\r':
        out_ += "\\r";
        return;
      case '\t':
        out_ += "\\t";
        return;
      default: {
        constexpr char kDigits[] = "0123456789abcdef";
        const auto code = static_cast<unsigned char>(c);
        const char sequence[] = {'\\', 'u', '0', '0', kDigits[code >> 4], kDigits[code & 0xF]};
        out_.append(sequence, sizeof sequence);
      }
    }
  }

  std::string out_;
};

void writeReading(Writer& writer, const PlainReading& reading) {
  writer.raw("{\"id\":");
  writer.string(reading.id);
  writer.raw(",\"date\":");
  writer.number(reading.date);
  writer.raw(",\"systolic\":");
  writer.integer(reading.systolic);
  writer.raw(",\"diastolic\":");
  writer.integer(reading.diastolic);
  writer.raw(",\"pulse\":");
  writer.integer(reading.pulse);
  if (reading.notes) {
    writer.raw(",\"notes\":");
    writer.string(*reading.notes);
  }
  if (reading.tagIDs) {
    writer.raw(",\"tagIDs\":[");
    bool first = true;
    for (const UuidBytes& id : *reading.tagIDs) {
      if (!first) writer.raw(",");
      first = false;
      writer.uuid(id);
    }
    writer.raw("]");
  }
  if (reading.healthKitID) {
    writer.raw(",\"healthKitID\":{\"bloodPressureUUID\":");
    writer.uuid(reading.healthKitID->bloodPressureUUID);
    writer.raw(",\"heartRateUUID\":");
    writer.uuid(reading.healthKitID->heartRateUUID);
    writer.raw("}");
  }
  writer.raw("}");
}

}  // namespace

std::string writeDocument(const std::vector<PlainReading>& readings) {
  constexpr std::size_t kTypicalReadingSize = 192;
  Writer writer(16 + readings.size() * kTypicalReadingSize);
  writer.raw("{\"readings\":[");
  for (std::size_t i = 0; i < readings.size(); ++i) {
    if (i > 0) writer.raw(",");
    writeReading(writer, readings[i]);
  }
  writer.raw("]}");
  return writer.take();
}

}  // namespace cardiolith::bench
