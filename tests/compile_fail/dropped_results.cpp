// Each DROP_<n> drops a result that is the call's only way to report an error or its only effect; with
// -Werror each must fail to compile. Without any DROP_<n> the file compiles, so a failure means the drop.
#include <cardiolith/cardiolith.hpp>
#include <utility>

namespace cardiolith {

void useResults(ReadingsStore& store, Readings readings) {
#if defined(DROP_1)
  store.save(std::move(readings));
#elif defined(DROP_2)
  json::encode(readings);
#elif defined(DROP_3)
  json::decode<Readings>("{}");
#elif defined(DROP_4)
  ReadingsSummarizer::summarise(readings.readings, Date(0), Date(1));
#elif defined(DROP_5)
  FakeReadingsGenerator::generateFakeReadings(3, Date(0), std::nullopt, false);
#else
  store.save(std::move(readings)).get();
#endif
}

}  // namespace cardiolith
