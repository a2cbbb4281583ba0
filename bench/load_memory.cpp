// Peak resident memory of loading a readings document, in a process of its own.
//
//   cardiolith_bench_load_memory write <readings> <folder>   writes the generated document to
//   <folder>/readings cardiolith_bench_load_memory load <folder>               loads it through
//   ReadingsStore::load cardiolith_bench_load_memory load-reference <folder>     reads and decodes it with
//   the simdjson reference
//
// The load modes print one JSON object: readings, file_bytes, rss_before_kb (resident before loading),
// peak_rss_kb (the process's peak, from getrusage) and retained_heap_kb (the heap still in use once the
// load is over, which is the loaded readings: the text and the parser are gone by then).

#include <malloc.h>
#include <sys/resource.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <string_view>

#include "bare_writer.hpp"
#include "cardiolith/storage/readings_store.hpp"
#include "document_files.hpp"
#include "document_generator.hpp"
#include "simdjson_reader.hpp"

namespace {

long peakResidentKilobytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

long heapInUseKilobytes() {
  const struct mallinfo2 info = mallinfo2();
  return static_cast<long>((info.uordblks + info.hblkhd) / 1024);
}

int write(std::size_t count, const std::filesystem::path& folder) {
  std::filesystem::create_directories(folder);
  const std::string text = cardiolith::bench::writeDocument(cardiolith::bench::generateReadings(count));
  std::ofstream file(folder / "readings", std::ios::binary);
  file.write(text.data(), static_cast<std::streamsize>(text.size()));
  return file.flush() ? 0 : 1;
}

template <class Load>
int measure(const std::filesystem::path& folder, Load load) {
  const auto fileBytes = std::filesystem::file_size(folder / "readings");
  const long before = peakResidentKilobytes();
  const long heapBefore = heapInUseKilobytes();
  const std::size_t readings = load();
  const long peak = peakResidentKilobytes();
  const long retained = heapInUseKilobytes() - heapBefore;
  std::printf(
      "{\"readings\": %zu, \"file_bytes\": %ju, \"rss_before_kb\": %ld, \"peak_rss_kb\": %ld, "
      "\"retained_heap_kb\": %ld}\n",
      readings, static_cast<std::uintmax_t>(fileBytes), before, peak, retained);
  return readings > 0 ? 0 : 1;
}

int usage() {
  std::cerr << "usage: cardiolith_bench_load_memory write <readings> <folder> | load <folder> | "
               "load-reference <folder>\n";
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) return usage();
  const std::string_view mode = argv[1];
  if (mode == "write" && argc == 4) return write(std::stoul(argv[2]), argv[3]);
  const std::filesystem::path folder = argv[2];
  if (mode == "load" && argc == 3) {
    // Held until the process ends, so that the peak covers the loaded readings.
    static cardiolith::Readings loaded;
    return measure(folder, [&] {
      cardiolith::ReadingsStore store(cardiolith::StorageLocations{folder, {folder / "documents"}});
      loaded = store.load().get();
      return loaded.readings.size();
    });
  }
  if (mode == "load-reference" && argc == 3) {
    static std::vector<cardiolith::bench::PlainReading> loaded;
    return measure(folder, [&] {
      const std::string text = cardiolith::bench::readFileBytes(folder / "readings");
      loaded = cardiolith::bench::readDocumentWithSimdjson(text);
      return loaded.size();
    });
  }
  return usage();
}
