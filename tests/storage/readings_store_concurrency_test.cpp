#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <thread>
#include <variant>

#include "cardiolith/storage/readings_store.hpp"
#include "storage_test_support.hpp"

namespace cardiolith::testing {
namespace {

constexpr int generations = 8;  // the documents that the threads save, by generation

// The generation of a loaded document, or -1 when it is none of the saved ones.
int generationOf(const Readings& loaded) {
  for (int generation = 0; generation < generations; ++generation) {
    if (sameReadings(loaded, sampleReadings(generation, 4 + generation))) return generation;
  }
  return -1;
}

class ReadingsStoreConcurrencyTest : public StorageTest {
 protected:
  // A thousand saves and loads from four threads, spread over the given stores, which all share one file.
  // Every load must see one whole saved document, and so must a fresh store afterwards.
  void hammer(const std::vector<ReadingsStore*>& stores, bool durable) {
    stores.front()->save(sampleReadings(0, 4)).get();
    constexpr int threads = 4;
    constexpr int callsPerThread = 250;
    std::atomic<int> tornLoads{0};
    std::vector<std::thread> workers;
    for (int t = 0; t < threads; ++t) {
      workers.emplace_back([&, t] {
        std::vector<std::variant<std::future<void>, std::future<Readings>>> pending;
        for (int call = 0; call < callsPerThread; ++call) {
          ReadingsStore& store = *stores[(t + call) % stores.size()];
          if (call % 2 == 0) {
            const int generation = (t * callsPerThread + call) % generations;
            pending.emplace_back(store.save(sampleReadings(generation, 4 + generation)));
          } else {
            pending.emplace_back(store.load());
          }
        }
        for (auto& future : pending) {
          if (auto* load = std::get_if<std::future<Readings>>(&future)) {
            if (generationOf(load->get()) < 0) ++tornLoads;
          } else {
            std::get<std::future<void>>(future).get();
          }
        }
      });
    }
    for (auto& worker : workers) worker.join();

    EXPECT_EQ(tornLoads.load(), 0);
    ReadingsStore fresh(locations(), StorageOptions{.durable = durable});
    EXPECT_GE(generationOf(fresh.loadExisting().get()), 0);
    EXPECT_THAT(messages(LogLevel::error), ::testing::IsEmpty());
  }
};

TEST_F(ReadingsStoreConcurrencyTest, OneStoreServesConcurrentCallsOneAtATime) {
  for (const bool durable : {false, true}) {
    SCOPED_TRACE(durable ? "durable" : "plain");
    ReadingsStore store(locations(), StorageOptions{.durable = durable});
    hammer({&store}, durable);
  }
}

// Separate stores share the file without a lock; durable writes replace it whole, so no reader ever sees
// a document half written by the other store.
TEST_F(ReadingsStoreConcurrencyTest, TwoDurableStoresOnOneFileNeverExposeATornDocument) {
  ReadingsStore first(locations(), StorageOptions{.durable = true});
  ReadingsStore second(locations(), StorageOptions{.durable = true});
  hammer({&first, &second}, true);
  EXPECT_THAT(namesStartingWith(container(), ".readings.tmp-"), ::testing::IsEmpty());
}

}  // namespace
}  // namespace cardiolith::testing
