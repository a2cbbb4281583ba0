#include "cardiolith/platform/uuid.hpp"

#include <gtest/gtest.h>

#include <set>
#include <unordered_set>

namespace cardiolith {
namespace {

TEST(UUIDTest, ParsesOnlyTheCanonicalFormInEitherCase) {
  struct Case {
    const char* text;
    bool parses;
  };
  const Case cases[] = {
      {"96FEBCCC-8368-4D94-B24B-495782725DF5", true},
      {"96febccc-8368-4d94-b24b-495782725df5", true},
      {"96FEbccc-8368-4d94-B24B-495782725dF5", true},
      {"{96FEBCCC-8368-4D94-B24B-495782725DF5}", false},
      {"96FEBCCC83684D94B24B495782725DF5", false},
      {" 96FEBCCC-8368-4D94-B24B-495782725DF5", false},
      {"96FEBCCC-8368-4D94-B24B-495782725DF5 ", false},
      {"96FEBCCC-8368-4D94-B24B-495782725DFG", false},
      {"96FEBCCC-8368-4D94-B24B+495782725DF5", false},
      {"96FEBCC-C8368-4D94-B24B-495782725DF5", false},
      {"", false},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(UUID::parse(c.text).has_value(), c.parses) << c.text;
  }
}

TEST(UUIDTest, TextIsUpperCaseAndRoundTrips) {
  const auto uuid = UUID::parse("5e2f527f-0851-42f4-a3e9-218a60a6c599");
  ASSERT_TRUE(uuid);
  EXPECT_EQ(uuid->uuidString(), "5E2F527F-0851-42F4-A3E9-218A60A6C599");
  EXPECT_EQ(UUID::parse(uuid->uuidString()), uuid);
  EXPECT_EQ(uuid->bytes()[0], 0x5E);
  EXPECT_EQ(uuid->bytes()[15], 0x99);
}

TEST(UUIDTest, RandomIsVersion4WithTheRfcVariantAndDistinct) {
  std::unordered_set<UUID> seen;
  for (int i = 0; i < 1000; ++i) {
    const auto uuid = UUID::random();
    EXPECT_EQ(uuid.bytes()[6] >> 4, 4);
    EXPECT_EQ(uuid.bytes()[8] >> 6, 2);
    EXPECT_EQ(uuid.uuidString()[14], '4');
    seen.insert(uuid);
  }
  EXPECT_EQ(seen.size(), 1000u);
}

TEST(UUIDTest, OrdersByBytes) {
  const auto low = *UUID::parse("00000000-0000-0000-0000-000000000001");
  const auto high = *UUID::parse("10000000-0000-0000-0000-000000000000");
  EXPECT_LT(low, high);
  EXPECT_EQ((std::set<UUID>{high, low, high}.size()), 2u);
}

}  // namespace
}  // namespace cardiolith
