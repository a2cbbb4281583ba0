#include <cardiolith/cardiolith.hpp>
#include <cstdio>

int main() {
  using cardiolith::BloodPressureAnalysis;
  static_assert(cardiolith::BloodPressureAnalyzer::result(135, 95) == BloodPressureAnalysis::high);
  const auto reading =
      std::make_shared<cardiolith::Reading>(cardiolith::UUID::random().uuidString(), cardiolith::Date::now(),
                                            128, 82, 71, std::nullopt, std::nullopt, std::nullopt);
  const auto json = cardiolith::json::encode(cardiolith::Readings{{reading}});
  const auto decoded = cardiolith::json::decode<cardiolith::Readings>(json);
  const bool same = decoded.readings.size() == 1 && *decoded.readings[0] == *reading;
  std::printf("package consumer: %s\n", same ? "ok" : "round trip failed");
  return same ? 0 : 1;
}
