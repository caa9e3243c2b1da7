#pragma once

#include <functional>
#include <utility>

namespace gavrel {

/// A value that lives elsewhere: read by `get`, written by `set`.
template <class Value>
struct Binding {
  std::function<Value()> get;
  std::function<void(Value)> set;

  /// A binding to a variable that outlives it.
  static Binding to(Value& variable) {
    return {[&variable] { return variable; }, [&variable](Value value) { variable = std::move(value); }};
  }
};

}  // namespace gavrel
