#include <expat.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <deque>
#include <vector>

#include "cardiolith/interop/health_export.hpp"
#include "cardiolith/platform/civil_time.hpp"
#include "interop/date_text.hpp"

namespace cardiolith::interop {
namespace {

constexpr std::string_view kBloodPressure = "HKCorrelationTypeIdentifierBloodPressure";
constexpr std::string_view kSystolic = "HKQuantityTypeIdentifierBloodPressureSystolic";
constexpr std::string_view kDiastolic = "HKQuantityTypeIdentifierBloodPressureDiastolic";
constexpr std::string_view kHeartRate = "HKQuantityTypeIdentifierHeartRate";
constexpr double kPulseWindowSeconds = 5 * 60;
constexpr std::size_t kBlockSize = 1 << 16;

std::string_view attribute(const XML_Char** attributes, std::string_view name) {
  for (const XML_Char** a = attributes; *a != nullptr; a += 2) {
    if (name == a[0]) return a[1];
  }
  return {};
}

std::optional<Date> instantOf(std::string_view text, const LocalClock& clock) {
  const auto date = detail::parseDateText(text, std::nullopt);
  if (!date) return std::nullopt;
  return date->offsetSeconds ? instantAtOffset(date->time, *date->offsetSeconds) : clock.instant(date->time);
}

// A value attribute as a whole number: "128" or "128.0"; a heart rate is rounded ("71.5" -> 72).
std::optional<std::int64_t> numberOf(std::string_view text, bool round) {
  std::string copy(text);
  char* end = nullptr;
  const double value = std::strtod(copy.c_str(), &end);
  if (copy.empty() || end != copy.c_str() + copy.size() || !std::isfinite(value) || std::abs(value) > 1e15)
    return std::nullopt;
  if (round) return static_cast<std::int64_t>(std::llround(value));
  if (std::floor(value) != value) return std::nullopt;
  return static_cast<std::int64_t>(value);
}

class HealthExportReader final : public ReadingReader {
 public:
  HealthExportReader(std::istream& in, const ReaderOptions& options)
      : in_(in), progress_(options.progress), parser_(XML_ParserCreate(nullptr)) {
    if (!parser_) throw ImportError("out of memory for the XML parser");
    // Never fetch or expand anything outside the file; the internal DTD is read as it is.
    XML_SetParamEntityParsing(parser_, XML_PARAM_ENTITY_PARSING_NEVER);
    XML_SetUserData(parser_, this);
    XML_SetElementHandler(parser_, &HealthExportReader::onStart, &HealthExportReader::onEnd);
  }
  ~HealthExportReader() override { XML_ParserFree(parser_); }
  HealthExportReader(const HealthExportReader&) = delete;
  HealthExportReader& operator=(const HealthExportReader&) = delete;

  std::optional<ReaderItem> next() override {
    while (ready_.empty() && !finished_) readBlock();
    if (ready_.empty()) return std::nullopt;
    ReaderItem item = std::move(ready_.front());
    ready_.pop_front();
    return item;
  }

 private:
  struct Pressure {
    std::string position;
    Date date;
    std::optional<std::int64_t> systolic;
    std::optional<std::int64_t> diastolic;
    std::optional<std::string> problem;
  };

  void readBlock() {
    std::vector<char> block(kBlockSize);
    in_.read(block.data(), static_cast<std::streamsize>(block.size()));
    const auto count = static_cast<int>(in_.gcount());
    bytesRead_ += static_cast<std::uint64_t>(count);
    const bool last = count == 0 || in_.eof();
    if (XML_Parse(parser_, block.data(), count, last ? XML_TRUE : XML_FALSE) != XML_STATUS_OK) {
      throw ImportError("line " + std::to_string(XML_GetCurrentLineNumber(parser_)) +
                        ": the health export is not well-formed XML (" +
                        XML_ErrorString(XML_GetErrorCode(parser_)) + ")");
    }
    if (progress_) progress_(bytesRead_);
    if (last) finish();
  }

  static void XMLCALL onStart(void* self, const XML_Char* name, const XML_Char** attributes) {
    static_cast<HealthExportReader*>(self)->start(name, attributes);
  }
  static void XMLCALL onEnd(void* self, const XML_Char* name) {
    static_cast<HealthExportReader*>(self)->end(name);
  }

  std::string here(std::size_t index) const {
    return "Correlation[" + std::to_string(index) + "] (line " +
           std::to_string(XML_GetCurrentLineNumber(parser_)) + ")";
  }

  void start(std::string_view name, const XML_Char** attributes) {
    if (name == "Correlation") {
      const std::size_t index = correlations_++;
      if (attribute(attributes, "type") != kBloodPressure) return;
      Pressure pressure{here(index), Date(), std::nullopt, std::nullopt, std::nullopt};
      const std::string_view start = attribute(attributes, "startDate");
      if (const auto date = instantOf(start, clock_)) {
        pressure.date = *date;
      } else {
        pressure.problem =
            "startDate \"" + std::string(start) + "\" is not a date like 2025-01-12 08:12:00 +0100";
      }
      current_ = std::move(pressure);
      return;
    }
    if (name != "Record") return;
    const std::string_view type = attribute(attributes, "type");
    const std::string_view value = attribute(attributes, "value");
    if (current_) {
      const bool systolic = type == kSystolic;
      if (!systolic && type != kDiastolic) return;
      const auto number = numberOf(value, false);
      if (!number && !current_->problem) {
        current_->problem = std::string(systolic ? "systolic" : "diastolic") + " value \"" +
                            std::string(value) + "\" is not a whole number of mmHg";
      }
      (systolic ? current_->systolic : current_->diastolic) = number;
      return;
    }
    if (type != kHeartRate) return;  // pressures outside a Correlation repeat those inside one
    const auto date = instantOf(attribute(attributes, "startDate"), clock_);
    const auto rate = numberOf(value, true);
    if (date && rate) heartRates_.emplace_back(date->timeIntervalSinceReferenceDate(), *rate);
  }

  void end(std::string_view name) {
    if (name != "Correlation" || !current_) return;
    if (!current_->problem && (!current_->systolic || !current_->diastolic))
      current_->problem = "the Correlation lacks a systolic or diastolic Record";
    if (current_->problem) {
      ready_.push_back(InvalidRow{current_->position, *current_->problem});
    } else {
      pressures_.push_back(std::move(*current_));
    }
    current_.reset();
  }

  void finish() {
    finished_ = true;
    std::sort(heartRates_.begin(), heartRates_.end());
    for (auto& pressure : pressures_) {
      const double time = pressure.date.timeIntervalSinceReferenceDate();
      const auto after = std::lower_bound(heartRates_.begin(), heartRates_.end(), std::pair{time, INT64_MIN});
      auto best = heartRates_.end();
      if (after != heartRates_.end()) best = after;
      if (after != heartRates_.begin() &&
          (best == heartRates_.end() || time - std::prev(after)->first < best->first - time))
        best = std::prev(after);
      if (best == heartRates_.end() || std::abs(best->first - time) > kPulseWindowSeconds) {
        ready_.push_back(SkippedRecord{pressure.position, "no pulse within 5 minutes"});
        continue;
      }
      ready_.push_back(IncomingReading{
          pressure.position,
          std::make_shared<Reading>("", pressure.date, *pressure.systolic, *pressure.diastolic, best->second,
                                    std::nullopt, std::nullopt, std::nullopt),
          {}});
    }
    pressures_.clear();
    heartRates_.clear();
  }

  std::istream& in_;
  std::function<void(std::uint64_t)> progress_;
  XML_Parser parser_;
  LocalClock clock_;
  std::uint64_t bytesRead_ = 0;
  bool finished_ = false;
  std::size_t correlations_ = 0;
  std::optional<Pressure> current_;
  std::vector<Pressure> pressures_;
  std::vector<std::pair<double, std::int64_t>> heartRates_;  // seconds since 2001, beats per minute
  std::deque<ReaderItem> ready_;
};

}  // namespace

std::unique_ptr<ReadingReader> readHealthExport(std::istream& in, const ReaderOptions& options) {
  return std::make_unique<HealthExportReader>(in, options);
}

}  // namespace cardiolith::interop
