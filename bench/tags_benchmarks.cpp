// TagsManager::insert into a list of a thousand tags: the synchronous part (remove, append, sort,
// re-index, publish), by the CPU time of the calling thread; each insert also starts a background save,
// which runs on another thread and is not counted.

#include <benchmark/benchmark.h>

#include <cstdio>

#include "benchmark_support.hpp"
#include "cardiolith/storage/tags_manager.hpp"
#include "temporary_folder.hpp"

namespace cardiolith::bench {
namespace {

constexpr std::size_t kListSize = 1'000;

UUID tagID(std::size_t index) {
  UUID::Bytes bytes{};
  bytes[0] = 0xB0;
  bytes[14] = static_cast<std::uint8_t>(index >> 8);
  bytes[15] = static_cast<std::uint8_t>(index);
  return UUID(bytes);
}

Tag tag(std::size_t index, std::string_view edition) {
  char title[48];
  std::snprintf(title, sizeof title, "Tag %04zu%.*s", index, static_cast<int>(edition.size()),
                edition.data());
  return Tag{tagID(index), title, "5856d6"};
}

void TagsInsert(benchmark::State& state) {
  const TemporaryFolder folder;
  TagsManager manager(locationsIn(folder.path()));
  manager.waitUntilLoaded();
  for (const Tag& defaultTag : manager.tags()) manager.deleteTag(defaultTag);
  for (std::size_t i = 0; i < kListSize; ++i) manager.insert(tag(i, ""));
  manager.waitForPendingSaves();
  if (manager.tags().size() != kListSize) state.SkipWithError("the list does not hold a thousand tags");

  // Each insert replaces one tag by a new edition of itself, so the list stays at a thousand.
  std::vector<Tag> editions[2];
  for (std::size_t i = 0; i < kListSize; ++i) {
    editions[0].push_back(tag(i, " (edited)"));
    editions[1].push_back(tag(i, ""));
  }
  std::size_t next = 0;
  const AllocationTally allocations;
  for (auto _ : state) {
    manager.insert(editions[(next / kListSize) % 2][next % kListSize]);
    ++next;
  }
  allocations.reportPerItem(state, "allocs_per_call", 1);
  manager.waitForPendingSaves();
  reportThroughput(state, 1);
}
BENCHMARK(TagsInsert)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace cardiolith::bench
