#include <gtest/gtest.h>

#include <sstream>

#include "cardiolith/interop/fhir.hpp"
#include "interop/read_all.hpp"

namespace cardiolith::interop {
namespace {

using testing::readAll;

std::string quantity(const char* code, const std::string& value, const char* unit) {
  return R"({"code":{"coding":[{"system":"http://loinc.org","code":")" + std::string(code) +
         R"("}]},"valueQuantity":{"value":)" + value + R"(,"code":")" + unit + "\"}}";
}

std::string panel(const std::string& time, const std::string& components, const std::string& extra = "") {
  return R"({"resourceType":"Observation","status":"final","code":{"coding":[{"system":"http://loinc.org","code":"85354-9"}]},)" +
         time + extra + R"(,"component":[)" + components + "]}";
}

const std::string kAt = R"("effectiveDateTime":"2025-01-12T08:12:00+01:00")";
const std::string kPressures = quantity("8480-6", "128", "mm[Hg]") + "," + quantity("8462-4", "82", "mm[Hg]");
const std::string kHeartRate =
    R"({"resourceType":"Observation","code":{"coding":[{"system":"http://loinc.org","code":"8867-4"}]},)" +
    kAt + R"(,"valueQuantity":{"value":71,"unit":"/min"}})";

std::string bundle(const std::vector<std::string>& resources) {
  std::string text = R"({"resourceType":"Bundle","type":"collection","entry":[)";
  for (std::size_t i = 0; i < resources.size(); ++i)
    text += (i ? "," : "") + ("{\"resource\":" + resources[i] + "}");
  return text + "]}";
}

const std::string kPulse = quantity("8867-4", "71", "/min");

// Each item as its kind, 'r' a reading of 128/82/71 at 07:12 UTC, 'i' an invalid row, 's' skipped, and its
// position; the same whether the text is read whole or a few bytes at a time.
TEST(FhirReader, YieldsReadingsInvalidAndSkippedRecordsAtAnyBlockSize) {
  const struct {
    const char* name;
    std::string text, items;
  } cases[] = {
      {"PulseComponent", bundle({panel(kAt, kPressures + "," + kPulse)}), "r entry[0].resource"},
      {"SeparateHeartRateAfterThePanel", bundle({panel(kAt, kPressures), kHeartRate}), "r entry[0].resource"},
      {"PeriodStart",
       bundle({panel(R"("effectivePeriod":{"start":"2025-01-12T07:12:00Z"})", kPressures), kHeartRate}),
       "r entry[0].resource"},
      {"PrettyBundleWithOthers",
       "{\n  \"resourceType\": \"Bundle\",\n  \"entry\": [{\"resource\":" +
           panel(kAt, kPressures + "," + kPulse, R"(,"note":[{"text":"\"]}, {"}])") +
           R"(}, {"resource":{"resourceType":"Patient"}}, {"fullUrl":"x"}, {"resource":)" +
           panel(kAt, kPressures + "," + kPulse) + "}]}",
       "r entry[0].resource, s entry[1].resource, s entry[2].resource, r entry[3].resource"},
      {"NdjsonWithOthers",
       R"({"resourceType":"Patient"})"
       "\n\n" +
           panel(kAt, kPressures) + "\n" + kHeartRate +
           "\n"
           R"({"resourceType":"Observation","code":{"coding":[{"code":"29463-7"}]}})"
           "\n",
       "s line 1, s line 5, r line 3"},
      {"NoPulseAnywhere", bundle({panel(kAt, kPressures)}), "s entry[0].resource"},
      {"KilopascalsRefused",
       bundle({panel(kAt, quantity("8480-6", "17", "kPa") + "," + quantity("8462-4", "11", "kPa"))}),
       "i entry[0].resource.component[0].valueQuantity.code"},
      {"FractionRefused", bundle({panel(kAt, quantity("8480-6", "128.5", "mm[Hg]"))}),
       "i entry[0].resource.component[0].valueQuantity.value"},
      {"BadTimeRefused", bundle({panel(R"("effectiveDateTime":"yesterday")", kPressures)}),
       "i entry[0].resource.effectiveDateTime"},
      {"NoEntries", R"({"resourceType":"Bundle","type":"collection"})", ""},
  };
  for (const auto& test : cases) {
    for (const std::size_t blockSize :
         {std::size_t{1}, std::size_t{5}, std::size_t{64}, std::size_t{1} << 16}) {
      SCOPED_TRACE(std::string(test.name) + ", blocks of " + std::to_string(blockSize));
      std::istringstream in(test.text);
      std::string items;
      for (const auto& item : readAll(*readFhir(in, {.blockSize = blockSize}))) {
        const char kind = std::holds_alternative<IncomingReading>(item) ? 'r'
                          : std::holds_alternative<InvalidRow>(item)    ? 'i'
                                                                        : 's';
        items += (items.empty() ? "" : ", ") + std::string(1, kind) + " " +
                 std::visit([](const auto& any) { return any.position; }, item);
        if (kind != 'r') continue;
        const Reading& reading = testing::readingOf(item);
        EXPECT_EQ(reading.date(), Date::fromTimeIntervalSince1970(1736665920));
        EXPECT_EQ(reading.systolic() * 1000000 + reading.diastolic() * 1000 + reading.pulse(), 128082071);
      }
      EXPECT_EQ(items, test.items);
    }
  }
}

TEST(FhirReader, TextThatIsNoBundleIsAnError) {
  for (const std::string text : {"{\"resourceType\":\"Bundle\",", "{\n\"resourceType\": \"Patient\"\n}"}) {
    std::istringstream in(text);
    EXPECT_THROW((void)readAll(*readFhir(in)), ImportError) << text;
  }
}

}  // namespace
}  // namespace cardiolith::interop
