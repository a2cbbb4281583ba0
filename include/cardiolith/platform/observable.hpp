#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "cardiolith/export.hpp"

namespace cardiolith {

// Cancels a subscription when it is destroyed or cancelled. Move-only.
class Subscription {
 public:
  Subscription() = default;
  explicit Subscription(std::function<void()> cancel) : cancel_(std::move(cancel)) {}
  Subscription(Subscription&& other) noexcept : cancel_(std::exchange(other.cancel_, nullptr)) {}
  Subscription& operator=(Subscription&& other) noexcept {
    if (this != &other) {
      cancel();
      cancel_ = std::exchange(other.cancel_, nullptr);
    }
    return *this;
  }
  Subscription(const Subscription&) = delete;
  Subscription& operator=(const Subscription&) = delete;
  ~Subscription() { cancel(); }

  void cancel() {
    if (auto cancel = std::exchange(cancel_, nullptr)) cancel();
  }

 private:
  std::function<void()> cancel_;
};

// A thread-safe publish/subscribe subject: subscribers are called synchronously, on the sending
// thread, in subscription order. A subscriber may cancel itself, or subscribe others, from its callback.
// A subscription may outlive its publisher; cancelling it then does nothing.
template <class... Args>
class Publisher {
 public:
  using Callback = std::function<void(const Args&...)>;
  // Called by subscribe() with the new subscriber's callback once it is registered, on the subscribing
  // thread: a publisher of a current value hands it to the new subscriber there.
  using Greeter = std::function<void(const Callback&)>;

  Publisher() = default;
  explicit Publisher(Greeter greeter) : greeter_(std::move(greeter)) {}
  Publisher(const Publisher&) = delete;
  Publisher& operator=(const Publisher&) = delete;

  [[nodiscard]] Subscription subscribe(Callback callback) {
    auto shared = std::make_shared<const Callback>(std::move(callback));
    std::uint64_t id;
    {
      std::lock_guard lock(state_->mutex);
      id = state_->nextID++;
      state_->subscribers.emplace(id, shared);
    }
    Subscription subscription([weak = std::weak_ptr<State>(state_), id] {
      if (auto state = weak.lock()) {
        std::lock_guard lock(state->mutex);
        state->subscribers.erase(id);
      }
    });
    if (greeter_) greeter_(*shared);  // should it throw, `subscription` unregisters the callback
    return subscription;
  }

  // Calls every current subscriber with the values.
  void send(const Args&... values) const {
    std::vector<std::shared_ptr<const Callback>> snapshot;
    {
      std::lock_guard lock(state_->mutex);
      if (state_->subscribers.empty()) return;
      snapshot.reserve(state_->subscribers.size());
      for (const auto& [id, callback] : state_->subscribers) snapshot.push_back(callback);
    }
    for (const auto& callback : snapshot) (*callback)(values...);
  }

  [[nodiscard]] std::size_t subscriberCount() const {
    std::lock_guard lock(state_->mutex);
    return state_->subscribers.size();
  }

 private:
  struct State {
    mutable std::mutex mutex;
    std::uint64_t nextID = 0;
    std::map<std::uint64_t, std::shared_ptr<const Callback>> subscribers;
  };
  std::shared_ptr<State> state_ = std::make_shared<State>();
  Greeter greeter_;
};

// An object whose observers hear of a change before it happens. The publisher is made on first use,
// so an object nobody observes carries one null pointer and nothing else.
class CARDIOLITH_EXPORT ObservableObject {
 public:
  ObservableObject() = default;
  ObservableObject(const ObservableObject&) = delete;
  ObservableObject& operator=(const ObservableObject&) = delete;
  virtual ~ObservableObject() { delete objectWillChange_.load(std::memory_order_acquire); }

  Publisher<>& objectWillChange() const {
    auto* publisher = objectWillChange_.load(std::memory_order_acquire);
    if (publisher != nullptr) return *publisher;
    auto* fresh = new Publisher<>();
    if (objectWillChange_.compare_exchange_strong(publisher, fresh, std::memory_order_acq_rel)) return *fresh;
    delete fresh;  // another thread made it first
    return *publisher;
  }

 protected:
  // Tells observers, if there are any, that a change is about to happen.
  void sendObjectWillChange() const {
    if (auto* publisher = objectWillChange_.load(std::memory_order_acquire)) publisher->send();
  }

 private:
  mutable std::atomic<Publisher<>*> objectWillChange_{nullptr};
};

}  // namespace cardiolith
