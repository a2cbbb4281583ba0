#include "corpus.hpp"

#include <map>
#include <memory>
#include <mutex>

#include "bare_writer.hpp"
#include "document_generator.hpp"

namespace cardiolith::bench {

const Corpus& corpus(std::size_t readingCount) {
  static std::mutex mutex;
  static std::map<std::size_t, std::unique_ptr<const Corpus>> built;
  std::lock_guard lock(mutex);
  auto& entry = built[readingCount];
  if (!entry) {
    auto readings = generateReadings(readingCount);
    auto text = writeDocument(readings);
    entry = std::make_unique<const Corpus>(Corpus{std::move(readings), std::move(text)});
  }
  return *entry;
}

}  // namespace cardiolith::bench
