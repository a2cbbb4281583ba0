#include "cardiolith/platform/observable.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace cardiolith {
namespace {

TEST(PublisherTest, DeliversInSubscriptionOrderUntilCancelled) {
  std::vector<std::string> heard;
  const auto listener = [&heard](std::string name) {
    return [&heard, name](auto& text, int n) { heard.push_back(name + text + std::to_string(n)); };
  };
  Subscription survivor;
  {
    Publisher<std::string, int> publisher;
    Subscription self = publisher.subscribe([&](auto& text, int n) {
      listener("self:")(text, n);
      self.cancel();  // from its own callback
    });
    auto first = publisher.subscribe(listener("1:"));
    auto second = publisher.subscribe(listener("2:"));
    survivor = publisher.subscribe(listener("3:"));
    publisher.send("a", 1);
    first.cancel();
    publisher.send("b", 2);
    second = Subscription();  // assigning over a subscription cancels it
    publisher.send("c", 3);
    EXPECT_EQ(publisher.subscriberCount(), 1u);
  }
  survivor.cancel();  // the publisher is gone: nothing to do, and no crash
  EXPECT_EQ(heard, (std::vector<std::string>{"self:a1", "1:a1", "2:a1", "3:a1", "2:b2", "3:b2", "3:c3"}));
}

TEST(ObservableObjectConcurrencyTest, LazyPublisherIsMadeOnceUnderRacingFirstUse) {
  struct Observed : ObservableObject {
    void change() const { sendObjectWillChange(); }
  };
  for (int round = 0; round < 50; ++round) {
    Observed object;
    std::atomic<int> heard{0};
    std::vector<Subscription> subscriptions(4);
    std::vector<std::jthread> threads;
    for (auto& subscription : subscriptions)
      threads.emplace_back([&] { subscription = object.objectWillChange().subscribe([&] { ++heard; }); });
    threads.clear();  // joins
    object.change();
    EXPECT_EQ(heard.load(), 4);
  }
}

}  // namespace
}  // namespace cardiolith
