#include "model/reading_arena.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <thread>

#include "cardiolith/model/reading.hpp"

namespace cardiolith {
namespace {

// Enough readings to fill several blocks of every size.
constexpr int kReadingCount = 2000;

ReadingList readingsFromAnArena() {
  ReadingArena arena;
  ReadingList readings;
  for (int i = 0; i < kReadingCount; ++i) {
    readings.push_back(Reading::decoded(arena.allocator<Reading>(),
                                        "reading " + std::to_string(i) + " of many", Date(i), 100 + i, 60, i,
                                        std::string(40, 'n'), std::set<UUID>{UUID{}}, std::nullopt));
  }
  return readings;  // the arena is gone; its blocks live on in the readings
}

TEST(ReadingArenaTest, ReadingsOutliveTheArenaAndEachOtherInAnyOrder) {
  ReadingList readings = readingsFromAnArena();
  std::shuffle(readings.begin(), readings.end(), std::mt19937(7));
  std::weak_ptr<Reading> watcher = readings.front();
  const int keptPulse = static_cast<int>(readings.front()->pulse());
  while (readings.size() > 1) {
    const Reading& last = *readings.back();
    EXPECT_EQ(last.id(), "reading " + std::to_string(last.pulse()) + " of many");
    EXPECT_EQ(last.systolic(), 100 + last.pulse());
    readings.pop_back();
  }
  EXPECT_EQ(readings.front()->pulse(), keptPulse) << "the last reading still holds its block";
  readings.clear();
  EXPECT_TRUE(watcher.expired()) << "a weak pointer may outlive the reading and its block's other readings";
}

TEST(ReadingArenaConcurrencyTest, ReadingsOfOneBlockDieOnSeveralThreadsAtOnce) {
  ReadingList readings = readingsFromAnArena();
  // Interleave the halves so that both threads release slots of the same blocks.
  ReadingList even;
  ReadingList odd;
  for (std::size_t i = 0; i < readings.size(); ++i)
    (i % 2 == 0 ? even : odd).push_back(std::move(readings[i]));
  std::int64_t sums[2] = {0, 0};
  const auto drain = [](ReadingList& list, std::int64_t& sum) {
    for (auto& reading : list) {
      sum += reading->pulse();
      reading.reset();
    }
  };
  std::thread first(drain, std::ref(even), std::ref(sums[0]));
  std::thread second(drain, std::ref(odd), std::ref(sums[1]));
  first.join();
  second.join();
  EXPECT_EQ(sums[0] + sums[1], std::int64_t{kReadingCount} * (kReadingCount - 1) / 2);
}

}  // namespace
}  // namespace cardiolith
