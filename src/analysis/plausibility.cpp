#include "cardiolith/analysis/plausibility.hpp"

namespace cardiolith {
namespace {

struct PlausibleRange {
  const char* name;
  const char* unit;
  std::int64_t lowest;
  std::int64_t highest;
};

constexpr PlausibleRange systolicRange{"systolic pressure", "mmHg", 40, 300};
constexpr PlausibleRange diastolicRange{"diastolic pressure", "mmHg", 20, 200};
constexpr PlausibleRange pulseRange{"pulse", "beats per minute", 20, 250};

void checkRange(const PlausibleRange& range, std::int64_t value, std::vector<std::string>& problems) {
  if (value >= range.lowest && value <= range.highest) return;
  problems.push_back("the " + std::string(range.name) + " " + std::to_string(value) + " is outside " +
                     std::to_string(range.lowest) + "-" + std::to_string(range.highest) + " " + range.unit);
}

}  // namespace

std::vector<std::string> implausibilities(std::int64_t systolic, std::int64_t diastolic, std::int64_t pulse) {
  std::vector<std::string> problems;
  checkRange(systolicRange, systolic, problems);
  checkRange(diastolicRange, diastolic, problems);
  checkRange(pulseRange, pulse, problems);
  if (diastolic >= systolic) {
    problems.push_back("the diastolic pressure " + std::to_string(diastolic) +
                       " is not below the systolic pressure " + std::to_string(systolic) +
                       " (were they swapped?)");
  }
  return problems;
}

}  // namespace cardiolith
