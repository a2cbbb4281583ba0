#include "log/history_format.hpp"

#include <charconv>

namespace cardiolith::tool {
namespace {

constexpr std::string_view header = "cardiolith change history 1\n";

// Reads the history written by encodeHistory(); HistoryFormatError for anything else.
class Decoder {
 public:
  explicit Decoder(std::string_view text) : text_(text) {}

  std::vector<HistoryStep> steps() {
    if (!text_.starts_with(header))
      throw HistoryFormatError("it does not start with \"" + std::string(header.substr(0, 26)) + "\"");
    text_.remove_prefix(header.size());
    std::vector<HistoryStep> result;
    while (!text_.empty()) {
      HistoryStep step;
      if (word() != "step") throw HistoryFormatError("a step does not start with \"step\"");
      step.change = std::string(word());
      step.fileName = std::string(word());
      if (step.fileName.empty() || step.fileName.find('/') != std::string::npos ||
          step.fileName.starts_with('.'))
        throw HistoryFormatError("a step names no file of the data folder");
      step.before = fingerprint();
      step.after = fingerprint();
      step.prefix = number();
      step.suffix = number();
      const auto commandSize = number(), middleSize = number('\n');
      step.command = bytes(commandSize);
      step.middle = bytes(middleSize);
      if (bytes(1) != "\n") throw HistoryFormatError("a step does not end where its sizes say");
      result.push_back(std::move(step));
    }
    return result;
  }

 private:
  std::string_view word(char end = ' ') {
    const auto stop = text_.find(end);
    if (stop == std::string_view::npos) throw HistoryFormatError("it ends in the middle of a step");
    const auto result = text_.substr(0, stop);
    text_.remove_prefix(stop + 1);
    return result;
  }
  std::uint64_t number(char end = ' ') {
    const auto digits = word(end);
    std::uint64_t value = 0;
    const auto [stop, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (digits.empty() || error != std::errc{} || stop != digits.data() + digits.size())
      throw HistoryFormatError("\"" + std::string(digits) + "\" is not a size");
    return value;
  }
  Fingerprint fingerprint() {
    Fingerprint print;
    print.present = number() != 0;
    print.size = number();
    print.hash = number();
    return print;
  }
  std::string bytes(std::uint64_t count) {
    if (count > text_.size()) throw HistoryFormatError("it ends in the middle of a step");
    std::string result(text_.substr(0, count));
    text_.remove_prefix(count);
    return result;
  }

  std::string_view text_;
};

}  // namespace

// FNV-1a: fast, and enough to notice another program's edit.
Fingerprint fingerprintOf(const std::optional<std::string>& content) {
  if (!content) return {};
  std::uint64_t hash = 14695981039346656037ull;
  for (const char byte : *content) {
    hash ^= static_cast<unsigned char>(byte);
    hash *= 1099511628211ull;
  }
  return {true, content->size(), hash};
}

std::string encodeHistory(const std::vector<HistoryStep>& steps) {
  std::string text(header);
  for (const auto& step : steps) {
    const auto fields = [](const Fingerprint& print) {
      return std::to_string(print.present) + " " + std::to_string(print.size) + " " +
             std::to_string(print.hash);
    };
    text += "step " + step.change + " " + step.fileName + " " + fields(step.before) + " " +
            fields(step.after) + " " + std::to_string(step.prefix) + " " + std::to_string(step.suffix) + " " +
            std::to_string(step.command.size()) + " " + std::to_string(step.middle.size()) + "\n" +
            step.command + step.middle + "\n";
  }
  return text;
}

std::vector<HistoryStep> decodeHistory(std::string_view text) { return Decoder(text).steps(); }

}  // namespace cardiolith::tool
