#pragma once

#include <cstdint>
#include <limits>

namespace cardiolith {

// The category of a systolic/diastolic pair. The cases are not ordered by severity.
enum class BloodPressureAnalysis { unreadable, low, normal, elevated, high, veryHigh };

// Inclusive bounds of one pressure, in mmHg. A bound at the limit of std::int64_t stands for "no bound".
struct PressureBounds {
  std::int64_t lowest = std::numeric_limits<std::int64_t>::min();
  std::int64_t highest = std::numeric_limits<std::int64_t>::max();

  // Whether the row constrains this pressure at all.
  [[nodiscard]] constexpr bool isBounded() const noexcept {
    return lowest != std::numeric_limits<std::int64_t>::min() ||
           highest != std::numeric_limits<std::int64_t>::max();
  }
  // lowest <= value <= highest without overflow: the wrapped difference compared unsigned, which also
  // rejects every value below lowest (negative ones included).
  [[nodiscard]] constexpr bool contains(std::int64_t value) const noexcept {
    return static_cast<std::uint64_t>(value) - static_cast<std::uint64_t>(lowest) <=
           static_cast<std::uint64_t>(highest) - static_cast<std::uint64_t>(lowest);
  }
};

// One row of the decision table: a pair is in `category` when both of its pressures lie in their bounds.
struct CategoryRow {
  BloodPressureAnalysis category;
  PressureBounds systolic;
  PressureBounds diastolic;
};

// The decision table, read top to bottom, the first matching row deciding (mmHg):
//   systolic 0-89 and diastolic 0-59 -> low; 90-120 and 60-80 -> normal; 120-129 and 0-80 -> elevated;
//   systolic 130-139 -> high; diastolic 81-89 -> high; systolic >= 140 -> veryHigh;
//   diastolic >= 90 -> veryHigh; a pair no row takes -> unreadable.
// The high rows come before the veryHigh rows, so 135/95 and 150/85 are high. It is the one description of
// the categories: texts for people and the bands of charts are derived from it.
inline constexpr CategoryRow categoryTable[] = {
    {BloodPressureAnalysis::low, {0, 89}, {0, 59}},
    {BloodPressureAnalysis::normal, {90, 120}, {60, 80}},
    {BloodPressureAnalysis::elevated, {120, 129}, {0, 80}},
    {BloodPressureAnalysis::high, {130, 139}, {}},
    {BloodPressureAnalysis::high, {}, {81, 89}},
    {BloodPressureAnalysis::veryHigh, {140, std::numeric_limits<std::int64_t>::max()}, {}},
    {BloodPressureAnalysis::veryHigh, {}, {90, std::numeric_limits<std::int64_t>::max()}},
};

struct BloodPressureAnalyzer {
  // Classifies any pair of integers by `categoryTable`. Allocation-free and usable in constant expressions.
  [[nodiscard]] static constexpr BloodPressureAnalysis result(std::int64_t systolic,
                                                              std::int64_t diastolic) noexcept {
    for (const auto& row : categoryTable) {
      if (row.systolic.contains(systolic) && row.diastolic.contains(diastolic)) return row.category;
    }
    return BloodPressureAnalysis::unreadable;
  }
};

}  // namespace cardiolith
