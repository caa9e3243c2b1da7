#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <utility>

namespace gavrel {

/// An object that tells its observers of a change before the change takes effect.
class Observable {
 public:
  using Observer = std::function<void()>;
  using Subscription = std::uint64_t;

  Observable() = default;
  Observable(const Observable&) = delete;
  Observable& operator=(const Observable&) = delete;

  /// Calls `observer` before each later change until the returned subscription is given to `forget`. An observer must
  /// not subscribe or forget while it is being called.
  Subscription observe(Observer observer) {
    observers_.emplace(next_, std::move(observer));
    return next_++;
  }

  void forget(Subscription subscription) { observers_.erase(subscription); }

  /// Tells all observers, in the order in which they subscribed.
  void announce() {
    for (auto& [subscription, observer] : observers_) observer();
  }

 private:
  std::map<Subscription, Observer> observers_;
  Subscription next_ = 0;
};

/// A property whose every change is announced by the object that owns it. Reading is free; `edit` announces once and
/// then hands out the value for any number of writes.
template <class Value>
class Published {
 public:
  explicit Published(Observable& owner, Value value = {}) : owner_(owner), value_(std::move(value)) {}

  [[nodiscard]] const Value& operator*() const { return value_; }
  [[nodiscard]] const Value* operator->() const { return &value_; }
  [[nodiscard]] Value& edit() {
    owner_.announce();
    return value_;
  }

 private:
  Observable& owner_;
  Value value_;
};

}  // namespace gavrel
