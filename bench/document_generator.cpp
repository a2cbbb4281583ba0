#include "document_generator.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <string_view>

namespace cardiolith::bench {
namespace {

constexpr std::array<std::string_view, 10> kDefaultTagTexts{
    "96FEBCCC-8368-4D94-B24B-495782725DF5", "5E2F527F-0851-42F4-A3E9-218A60A6C599",
    "45738A4A-865F-4470-8A22-2081AD989F44", "39A7610C-C9AD-4C87-BDA0-FD77026538A7",
    "6353FCF5-4C18-4E3F-BB45-579D22FF2E15", "6893BC1C-FEE0-4A51-A08F-C2D9D503A038",
    "5D26EFB8-C397-48B5-AD44-A8844905B79C", "A5994EAE-1FF2-4416-8A59-CB85BEF0B33B",
    "13352195-20A1-4CD9-AF81-D51A82278414", "CAC1A117-8703-46E4-B6E4-943E971EFB0D"};

// Words of the notes. Most are plain; the others carry what real notes carry and a writer must escape or
// pass through: commas, quotes, slashes, a line break, accented letters and emoji.
constexpr std::array<std::string_view, 48> kWords{
    "felt",        "fine",     "after",      "coffee",        "walk",    "stairs",  "slept",
    "badly",       "headache", "before",     "breakfast",     "dinner",  "work",    "stress",
    "calm",        "rested",   "cuff",       "loose",         "sitting", "quietly", "morning",
    "evening",     "left",     "arm",        "tired,",        "dizzy,",  "then",    "ok,",
    "\"relaxed\"", "said",     "\"retake\"", "left/right",    "w/o",     "1/2",     "pill",
    "line\nbreak", "café",     "naïve",      "Müller",        "señal",   "élevé",   "Ångström",
    "😀",           "❤️",   "💊",          "🏃‍♂️", "ok 👍",    "très"};

// Draws from one std::mt19937_64, with the arithmetic spelt out so that the log is the same everywhere.
class Draws {
 public:
  explicit Draws(std::uint64_t seed) : engine_(seed) {}

  std::uint64_t next() { return engine_(); }
  // Uniform in [0, 1) with 53 random bits.
  double unit() { return static_cast<double>(engine_() >> 11) * 0x1.0p-53; }
  // Uniform integer in [lower, upper]; for spans this small the bias of the remainder is below 2^-56.
  std::int64_t between(std::int64_t lower, std::int64_t upper) {
    const auto span = static_cast<std::uint64_t>(upper - lower) + 1;
    return lower + static_cast<std::int64_t>(engine_() % span);
  }
  bool chance(double probability) { return unit() < probability; }
  // Roughly normal: the Irwin-Hall sum of four uniforms, rescaled to unit variance.
  double normal(double mean, double deviation) {
    const double sum = unit() + unit() + unit() + unit();
    return mean + deviation * (sum - 2.0) * std::sqrt(3.0);
  }
  std::int64_t measurement(double mean, double deviation, std::int64_t lower, std::int64_t upper) {
    return std::clamp(static_cast<std::int64_t>(std::lround(normal(mean, deviation))), lower, upper);
  }
  UuidBytes uuid() {
    UuidBytes bytes{};
    const std::uint64_t high = engine_();
    const std::uint64_t low = engine_();
    for (std::size_t i = 0; i < 8; ++i) {
      bytes[i] = static_cast<std::uint8_t>(high >> (56 - 8 * i));
      bytes[8 + i] = static_cast<std::uint8_t>(low >> (56 - 8 * i));
    }
    bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0F) | 0x40);  // version 4
    bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3F) | 0x80);  // RFC 4122 variant
    return bytes;
  }

 private:
  std::mt19937_64 engine_;
};

std::string notes(Draws& draws) {
  const std::int64_t count = draws.between(2, 20);
  std::string text;
  for (std::int64_t i = 0; i < count; ++i) {
    if (i > 0) text += ' ';
    text += kWords[static_cast<std::size_t>(draws.between(0, kWords.size() - 1))];
  }
  return text;
}

std::vector<UuidBytes> tagIDs(Draws& draws) {
  const auto& pool = defaultTagIDs();
  const std::int64_t count = draws.between(1, 3);
  std::vector<UuidBytes> ids;
  for (std::int64_t i = 0; i < count; ++i) {
    ids.push_back(
        pool[static_cast<std::size_t>(draws.between(0, static_cast<std::int64_t>(pool.size()) - 1))]);
  }
  normaliseTagIDs(ids);
  return ids;
}

// Seconds after midnight of the index-th of `count` readings of one day, latest first: one reading in the
// morning, two in the evening and the morning, three in the evening, at midday and in the morning.
double timeOfDay(Draws& draws, std::int64_t index, std::int64_t count) {
  struct Window {
    double start;
    double length;
  };
  constexpr Window kEvening{19.0 * 3600, 3.5 * 3600};
  constexpr Window kMidday{12.0 * 3600, 2.0 * 3600};
  constexpr Window kMorning{6.5 * 3600, 2.5 * 3600};
  constexpr std::array<std::array<Window, 3>, 3> kWindowsByCount{{
      {kMorning, kMorning, kMorning},
      {kEvening, kMorning, kMorning},
      {kEvening, kMidday, kMorning},
  }};
  const Window window = kWindowsByCount[static_cast<std::size_t>(count - 1)][static_cast<std::size_t>(index)];
  return window.start + draws.unit() * window.length;
}

PlainReading reading(Draws& draws, double date) {
  PlainReading reading;
  reading.id = uuidString(draws.uuid());
  reading.date = date;
  reading.systolic = draws.measurement(124, 14, 85, 210);
  reading.diastolic = draws.measurement(80, 9, 45, 130);
  reading.pulse = draws.measurement(72, 11, 38, 170);
  if (draws.chance(0.4)) reading.notes = notes(draws);
  if (draws.chance(0.6)) reading.tagIDs = tagIDs(draws);
  if (draws.chance(0.2)) reading.healthKitID = PlainHealthKitID{draws.uuid(), draws.uuid()};
  return reading;
}

}  // namespace

const std::vector<UuidBytes>& defaultTagIDs() {
  static const std::vector<UuidBytes> ids = [] {
    std::vector<UuidBytes> parsed;
    for (std::string_view text : kDefaultTagTexts) parsed.push_back(*parseUuid(text));
    return parsed;
  }();
  return ids;
}

std::vector<PlainReading> generateReadings(std::size_t count, std::uint64_t seed) {
  Draws draws(seed);
  std::vector<PlainReading> readings;
  readings.reserve(count);
  for (std::int64_t day = 0; readings.size() < count; ++day) {
    const double midnight = kNewestDay - static_cast<double>(day) * kSecondsPerDay;
    const std::int64_t perDay = draws.between(1, 3);
    for (std::int64_t i = 0; i < perDay && readings.size() < count; ++i) {
      readings.push_back(reading(draws, midnight + timeOfDay(draws, i, perDay)));
    }
  }
  return readings;
}

}  // namespace cardiolith::bench
