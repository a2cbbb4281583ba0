#pragma once

#include <cstdint>

namespace cardiolith {

// The category of a systolic/diastolic pair. The cases are not ordered by severity.
enum class BloodPressureAnalysis { unreadable, low, normal, elevated, high, veryHigh };

struct BloodPressureAnalyzer {
  // Classifies any pair of integers by a decision table read top to bottom (bounds inclusive, mmHg):
  //   systolic 0-89 and diastolic 0-59 -> low; 90-120 and 60-80 -> normal; 120-129 and 0-80 -> elevated;
  //   systolic 130-139 -> high; diastolic 81-89 -> high; systolic >= 140 -> veryHigh;
  //   diastolic >= 90 -> veryHigh; anything else -> unreadable.
  // The high rows come before the veryHigh rows, so 135/95 and 150/85 are high.
  static constexpr BloodPressureAnalysis result(std::int64_t systolic, std::int64_t diastolic) noexcept {
    if (inRange(systolic, 0, 89) && inRange(diastolic, 0, 59)) return BloodPressureAnalysis::low;
    if (inRange(systolic, 90, 120) && inRange(diastolic, 60, 80)) return BloodPressureAnalysis::normal;
    if (inRange(systolic, 120, 129) && inRange(diastolic, 0, 80)) return BloodPressureAnalysis::elevated;
    if (inRange(systolic, 130, 139)) return BloodPressureAnalysis::high;
    if (inRange(diastolic, 81, 89)) return BloodPressureAnalysis::high;
    if (systolic >= 140) return BloodPressureAnalysis::veryHigh;
    if (diastolic >= 90) return BloodPressureAnalysis::veryHigh;
    return BloodPressureAnalysis::unreadable;
  }

 private:
  // lower <= value <= upper without overflow: the wrapped difference compared unsigned, which also
  // rejects every value below lower (negative ones included).
  static constexpr bool inRange(std::int64_t value, std::int64_t lower, std::int64_t upper) noexcept {
    return static_cast<std::uint64_t>(value) - static_cast<std::uint64_t>(lower) <=
           static_cast<std::uint64_t>(upper - lower);
  }
};

}  // namespace cardiolith
