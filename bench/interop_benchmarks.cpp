// The tool's import and export of a 100,000-row CSV, side by side with the sqlite3 shell's .import of the
// same file into a table and its CSV output of the same rows. Each measurement is one whole process, as a
// person would run it: the program's start, the parse, the save. The tool is $CARDIOLITH_TOOL; sqlite3 is
// found on the PATH.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

extern char** environ;

namespace {

namespace fs = std::filesystem;

constexpr int kRows = 100'000;

// Runs a program to its end, its standard output thrown away; throws when it fails.
void run(const std::vector<std::string>& arguments) {
  std::vector<char*> argv;
  for (const auto& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
  argv.push_back(nullptr);
  // The tools' own reports would fall into the benchmark's table.
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t child = 0;
  const int error = posix_spawnp(&child, argv[0], &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) throw std::runtime_error("could not start " + arguments[0]);
  int status = 0;
  waitpid(child, &status, 0);
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) throw std::runtime_error(arguments[0] + " failed");
}

// A spreadsheet's table of made-up readings, the header naming the columns, a note on every fifth row.
void writeRows(const fs::path& path) {
  std::ofstream out(path, std::ios::binary);
  out << "Date,Systolic,Diastolic,Pulse,Notes\n";
  std::mt19937 random(7);
  std::uniform_int_distribution<int> systolic(100, 160), diastolic(60, 95), pulse(50, 100);
  for (int row = 0; row < kRows; ++row) {
    const int day = row / 4, minute = (row % 4) * 300 + 420;
    const int year = 2000 + day / 336, month = day % 336 / 28 + 1, dayOfMonth = day % 28 + 1;
    char date[32];
    std::snprintf(date, sizeof date, "%04d-%02d-%02d %02d:%02d", year, month, dayOfMonth, minute / 60,
                  minute % 60);
    out << date << ',' << systolic(random) << ',' << diastolic(random) << ',' << pulse(random) << ','
        << (row % 5 == 0 ? "\"after a walk, felt fine\"" : "") << '\n';
  }
}

struct Workplace {
  Workplace() {
    const char* executable = std::getenv("CARDIOLITH_TOOL");
    if (!executable) throw std::runtime_error("set CARDIOLITH_TOOL to the cardiolith executable");
    tool = executable;
    folder = fs::temp_directory_path() / ("cardiolith-interop-bench-" + std::to_string(::getpid()));
    fs::create_directories(folder);
    rows = folder / "rows.csv";
    writeRows(rows);
    run({tool, "import", rows.string(), "--data-dir", (folder / "full").string()});
    run({"sqlite3", (folder / "full.db").string(), ".import --csv " + rows.string() + " readings"});
  }
  ~Workplace() { fs::remove_all(folder); }
  std::string tool;
  fs::path folder, rows;
};

Workplace& workplace() {
  static Workplace instance;
  return instance;
}

void report(benchmark::State& state) {
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * kRows);
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                          static_cast<std::int64_t>(fs::file_size(workplace().rows)));
}

void ToolImportCsv(benchmark::State& state) {
  const auto& place = workplace();
  const fs::path log = place.folder / "empty";
  for (auto _ : state) {
    state.PauseTiming();
    fs::remove_all(log);
    state.ResumeTiming();
    run({place.tool, "import", place.rows.string(), "--data-dir", log.string()});
  }
  report(state);
}

void SqliteImportCsv(benchmark::State& state) {
  const auto& place = workplace();
  const fs::path database = place.folder / "empty.db";
  for (auto _ : state) {
    state.PauseTiming();
    fs::remove(database);
    state.ResumeTiming();
    run({"sqlite3", database.string(), ".import --csv " + place.rows.string() + " readings"});
  }
  report(state);
}

void ToolExportCsv(benchmark::State& state) {
  const auto& place = workplace();
  for (auto _ : state) {
    run({place.tool, "export", "--format", "csv", "--out", (place.folder / "tool.csv").string(), "--data-dir",
         (place.folder / "full").string()});
  }
  report(state);
}

void SqliteExportCsv(benchmark::State& state) {
  const auto& place = workplace();
  for (auto _ : state) {
    run({"sqlite3", (place.folder / "full.db").string(), ".headers on", ".mode csv",
         ".once " + (place.folder / "sqlite.csv").string(), "SELECT * FROM readings;"});
  }
  report(state);
}

BENCHMARK(ToolImportCsv)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(SqliteImportCsv)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(ToolExportCsv)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(SqliteExportCsv)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
