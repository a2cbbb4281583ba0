#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <thread>

#include "cardiolith/storage/readings_store.hpp"
#include "storage_test_support.hpp"
#include "support/test_seed.hpp"

namespace cardiolith::testing {
namespace {

// Big enough that a save takes a while, so that most kills land in the middle of one.
Readings generationDocument(int generation) { return sampleReadings(generation, 150); }

// The child: saves one generation after another, durably, until it is killed. The first byte on `ready`
// says that the first save is on disk.
[[noreturn]] void saveForever(const StorageLocations& locations, int ready) {
  try {
    ReadingsStore store(locations, StorageOptions{.durable = true});
    for (int generation = 0;; ++generation) {
      store.save(generationDocument(generation)).get();
      if (generation == 0 && ::write(ready, "x", 1) != 1) ::_exit(3);
    }
  } catch (...) {
    ::_exit(2);
  }
}

using ReadingsStoreCrashTest = StorageTest;

// A process killed at random moments while it saves durably leaves, every time, a file that loads and
// equals one of the documents it saved; a kill in the middle of a save leaves only its temporary file.
TEST_F(ReadingsStoreCrashTest, KilledWhileSavingLeavesAWholeSavedDocument) {
  constexpr int kills = 100;
  int interruptedWrites = 0;
  auto random = seededGenerator();
  std::uniform_int_distribution<int> killDelayMicroseconds(0, 19999);
  for (int kill = 0; kill < kills; ++kill) {
    SCOPED_TRACE("kill " + std::to_string(kill));
    int pipeEnds[2];
    ASSERT_EQ(::pipe(pipeEnds), 0);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      ::close(pipeEnds[0]);
      saveForever(locations(), pipeEnds[1]);
    }
    ::close(pipeEnds[1]);
    char ready = 0;
    const bool started = ::read(pipeEnds[0], &ready, 1) == 1;
    ::close(pipeEnds[0]);
    if (started) std::this_thread::sleep_for(std::chrono::microseconds(killDelayMicroseconds(random)));
    ::kill(child, SIGKILL);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(started) << "the saving process ended before its first save";
    ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << "status " << status;

    const auto leftovers = namesStartingWith(container(), ".readings.tmp-");
    interruptedWrites += leftovers.empty() ? 0 : 1;
    for (const auto& name : leftovers) fs::remove(container() / name);

    // loadExisting() throws where load() would log and give nothing.
    const Readings loaded = ReadingsStore(locations(), StorageOptions{.durable = true}).loadExisting().get();
    ASSERT_FALSE(loaded.readings.empty());
    const int generation = std::stoi(loaded.readings.front()->id().substr(std::string("generation-").size()));
    EXPECT_EQ(readWholeFile(readingsFile()), json::encode(generationDocument(generation)));
  }
  std::printf("[          ] %d kills, %d of them in the middle of a write; every file loaded whole\n", kills,
              interruptedWrites);
}

}  // namespace
}  // namespace cardiolith::testing
