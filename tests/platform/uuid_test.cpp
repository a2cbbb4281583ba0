#include "cardiolith/platform/uuid.hpp"

#include <gtest/gtest.h>

#include <unordered_set>

namespace cardiolith {
namespace {

TEST(UUIDTest, ParsesOnlyTheCanonicalFormInEitherCaseAndWritesUpperCase) {
  const std::string canonical = "96FEBCCC-8368-4D94-B24B-495782725DF5";
  const struct {
    const char* text;
    bool parses;
  } cases[] = {
      {"96FEBCCC-8368-4D94-B24B-495782725DF5", true},  {"96febccc-8368-4d94-b24b-495782725df5", true},
      {"96FEbccc-8368-4d94-B24B-495782725dF5", true},  {"{96FEBCCC-8368-4D94-B24B-495782725DF5}", false},
      {"96FEBCCC83684D94B24B495782725DF5", false},     {" 96FEBCCC-8368-4D94-B24B-495782725DF5", false},
      {"96FEBCCC-8368-4D94-B24B-495782725DFG", false}, {"96FEBCCC-8368-4D94-B24B+495782725DF5", false},
      {"96FEBCC-C8368-4D94-B24B-495782725DF5", false}, {"", false}};
  for (const auto& [text, parses] : cases) {
    const auto uuid = UUID::parse(text);
    EXPECT_EQ(uuid ? uuid->uuidString() : "", parses ? canonical : "") << text;
  }
  // Ordered by the bytes in network order, the first byte being the first two digits.
  EXPECT_LT(*UUID::parse("00000000-0000-0000-0000-0000000000FF"),
            *UUID::parse("01000000-0000-0000-0000-000000000000"));
}

TEST(UUIDTest, RandomIsVersion4WithTheRfcVariantAndDistinct) {
  std::unordered_set<UUID> seen;
  for (int i = 0; i < 1000; ++i) {
    const auto uuid = UUID::random();
    EXPECT_EQ(uuid.bytes()[6] >> 4, 4);
    EXPECT_EQ(uuid.bytes()[8] >> 6, 2);
    seen.insert(uuid);
  }
  EXPECT_EQ(seen.size(), 1000u);
}

}  // namespace
}  // namespace cardiolith
