#pragma once

#include <string>
#include <utility>
#include <variant>

namespace gavrel {

/// Why an operation on something outside the program (a file, its text) did not succeed, as one line for its user.
struct Failure {
  std::string reason;
};

/// Either a value or the Failure that says why there is none.
template <class Value>
class [[nodiscard]] Result {
 public:
  Result(Value value) : content_(std::move(value)) {}
  Result(Failure failure) : content_(std::move(failure)) {}

  [[nodiscard]] explicit operator bool() const { return content_.index() == 0; }
  [[nodiscard]] Value& operator*() { return std::get<0>(content_); }
  [[nodiscard]] const Value& operator*() const { return std::get<0>(content_); }
  [[nodiscard]] Value* operator->() { return &std::get<0>(content_); }
  [[nodiscard]] const Value* operator->() const { return &std::get<0>(content_); }
  [[nodiscard]] const Failure& failure() const { return std::get<1>(content_); }

 private:
  std::variant<Value, Failure> content_;
};

}  // namespace gavrel
