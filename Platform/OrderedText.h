#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace gavrel {

/// Makes a text of `count` parts: `make(first, last, text)` appends the parts from `first` until before `last` to a
/// text, for ranges of `perPiece` parts, in several threads; `take(text)` is called with the ranges' texts in their
/// order, one at a time. What either throws is thrown here.
void makeInOrder(std::size_t count, std::size_t perPiece,
                 const std::function<void(std::size_t first, std::size_t last, std::string& text)>& make,
                 const std::function<void(std::string_view text)>& take);

}  // namespace gavrel
