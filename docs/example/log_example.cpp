// A week of a blood-pressure log kept with the library: readings saved to and loaded from a data folder,
// tags, a period summary against the week before, and one text row per reading. Built against the
// installed package in CI; run it with a scratch folder as its only argument.

#include <cardiolith/cardiolith.hpp>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <set>

using namespace cardiolith;

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s SCRATCH_FOLDER\n", argv[0]);
    return 2;
  }
  // Both the shared container and the documents folder in the scratch folder, instead of the user's own.
  const std::filesystem::path folder = argv[1];
  std::filesystem::create_directories(folder);
  const StorageLocations locations{folder, {folder}};

  // The tags load in the background; wait for them before looking one up. On a first run there is no tags
  // file yet: the library logs that it could not read one and starts from the ten default tags.
  TagsManager tags(locations);
  tags.waitUntilLoaded();
  const std::set<UUID> morning{tags.tags().front().id};

  // One reading a day for a week.
  const Date now = Date::now();
  Readings log;
  for (std::int64_t day = 0; day < 7; ++day) {
    log.readings.push_back(std::make_shared<Reading>(UUID::random().uuidString(), now.addingDays(-day),
                                                     120 + day, 80, 70, std::nullopt, std::nullopt, morning));
  }

  // Saving is asynchronous: the future carries its error, and dropping it does not compile.
  ReadingsStore store(locations);
  store.save(log).get();
  const Readings loaded = store.load().get();

  const auto summary = ReadingsSummarizer::summarise(loaded.readings, now.addingDays(-7), now);
  if (const auto& average = summary.currentPeriodAverage()) {
    std::printf("%zu readings, average %.1f/%.1f\n", loaded.readings.size(), average->systolic(),
                average->diastolic());
  }

  const DateFormatter dates("yyyy-MM-dd HH:mm");
  const ListFormatter lists;
  for (const auto& reading : loaded.readings) {
    std::printf("%s\n", reading->inLineFormat(dates, lists, tags, ", ", true, false).c_str());
  }
  return loaded.readings.size() == 7 && summary.currentPeriodAverageAnalysis() ? 0 : 1;
}
