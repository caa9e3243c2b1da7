#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

namespace gavrel {

/// Programming errors: states that no correct caller can reach and from which the process cannot go on.

/// Prints "Fatal error: " + `what` as one line on standard error and aborts the process. Pending standard output is
/// written first, so that what was printed before the error is not lost.
[[noreturn]] void fatal(std::string_view what);

/// Has `keep` called with the line, without its newline, before the process is aborted. There is one such function at a
/// time; an empty one removes it.
void onFatal(std::function<void(std::string_view line)> keep);

/// Ends the process for an index outside [0, size) of the array called `array`.
[[noreturn]] void fatalIndex(std::string_view array, std::int64_t index, std::int64_t size);

/// Entry `index` of any contiguous container; an index outside it is fatal and named with `array`.
template <class Container>
[[nodiscard]] constexpr decltype(auto) at(Container& container, std::int64_t index, std::string_view array) {
  const auto size = static_cast<std::int64_t>(container.size());
  if (index < 0 || index >= size) [[unlikely]]
    fatalIndex(array, index, size);
  return container[static_cast<std::size_t>(index)];
}

/// factor * number + offset in 64 bits; an overflow is fatal and named with `what`.
[[nodiscard]] inline std::int64_t checkedProduct(std::int64_t factor, std::int64_t number, std::int64_t offset,
                                                 std::string_view what) {
  std::int64_t result = 0;
  if (__builtin_mul_overflow(factor, number, &result) || __builtin_add_overflow(result, offset, &result)) [[unlikely]] {
    fatal(what);
  }
  return result;
}

}  // namespace gavrel
