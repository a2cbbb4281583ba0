#include "cardiolith/platform/observable.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace cardiolith {
namespace {

TEST(PublisherTest, DeliversToSubscribersInOrderUntilCancelled) {
  Publisher<std::string, int> publisher;
  std::vector<std::string> heard;
  auto first = publisher.subscribe([&](const std::string& s, const int& n) { heard.push_back("1:" + s + std::to_string(n)); });
  auto second = publisher.subscribe([&](const std::string& s, const int& n) { heard.push_back("2:" + s + std::to_string(n)); });
  publisher.send("a", 1);
  first.cancel();
  publisher.send("b", 2);
  second = Subscription();  // assigning over a subscription cancels it
  publisher.send("c", 3);
  EXPECT_EQ(heard, (std::vector<std::string>{"1:a1", "2:a1", "2:b2"}));
}

TEST(PublisherTest, SubscriberMayCancelItselfAndOutliveThePublisher) {
  Subscription survivor;
  int calls = 0;
  {
    Publisher<> publisher;
    std::optional<Subscription> self;
    self = publisher.subscribe([&] {
      ++calls;
      self->cancel();
    });
    survivor = publisher.subscribe([] {});
    publisher.send();
    publisher.send();
    EXPECT_EQ(publisher.subscriberCount(), 1u);
  }
  survivor.cancel();  // the publisher is gone: nothing to do, and no crash
  EXPECT_EQ(calls, 1);
}

TEST(ObservableObjectConcurrencyTest, LazyPublisherIsMadeOnceUnderRacingFirstUse) {
  struct Observed : ObservableObject {
    void change() const { sendObjectWillChange(); }
  };
  for (int round = 0; round < 50; ++round) {
    Observed object;
    std::atomic<int> heard{0};
    std::vector<Subscription> subscriptions(4);
    std::vector<std::thread> threads;
    for (auto& subscription : subscriptions) {
      threads.emplace_back([&] { subscription = object.objectWillChange().subscribe([&] { ++heard; }); });
    }
    for (auto& thread : threads) thread.join();
    object.change();
    EXPECT_EQ(heard.load(), 4);
  }
}

}  // namespace
}  // namespace cardiolith
